#include "Core/LibraryFormat.h"

#include "Core/Printing.h"
#include "Core/SampleLibrary.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

/// The sample file with its first `from` made `to`.
QByteArray changed(const QByteArray &from, const QByteArray &to) {
    QByteArray file = samples::libraryFile();
    const qsizetype start = file.indexOf(from);
    EXPECT_GE(start, 0) << from.toStdString();
    return file.replace(start, from.size(), to);
}

QString failure(const QByteArray &file) {
    try {
        decodeLibrary(file);
    } catch (const DecodingError &error) {
        return error.localizedDescription();
    }
    ADD_FAILURE() << "This was read: " << file.toStdString();
    return QString();
}

QString failureOf(const QByteArray &from, const QByteArray &to) {
    return failure(changed(from, to));
}

QString scratchpad(const QByteArray &literal) {
    return decodeLibrary(changed("\"scratchpad\" : \"\"", "\"scratchpad\" : " + literal))
        .scratchpad;
}

double duration(const QByteArray &literal) {
    return decodeLibrary(changed("4.25", literal)).history.first().duration;
}

TEST(LibraryDecoding, ReadsTheSample) {
    EXPECT_EQ(decodeLibrary(samples::libraryFile()), samples::library());
}

TEST(LibraryDecoding, TakesAnyOrderOfKeysAndAnyWhitespace) {
    const QByteArray file =
        "\r\n\t{\"vocabulary\":[{\"replacement\":\"kubectl\",\"phrase\":\"kube ctl\",\"id\":"
        "\"16FD2706-8BAF-433B-82EB-8C7FADA847DA\",\"aliases\":[\"cube control\",\"cube "
        "cuddle\"]}],\"snippets\"\t:\n[ {\"trigger\":\"sign off\",\"id\":"
        "\"7C9E6679-7425-40DE-944B-E07FC1F90AE7\",\"content\":\"Kind "
        "regards,\"}],\"settings\":{\"smartPunctuation\":true,\"removeFillers\":true,"
        "\"languageIdentifier\":\"en-AU\",\"autoPaste\":false},\"scratchpad\":\"\","
        "\"schemaVersion\":2,\"history\":[{\"text\":\"Send the report "
        "today.\",\"id\":\"3F2504E0-4F89-41D3-9A0C-0305E82C3301\",\"duration\":4.25,\"createdAt\":"
        "\"2026-03-14T09:26:53Z\"}]} \r\n";
    EXPECT_EQ(decodeLibrary(file), samples::library());
}

TEST(LibraryDecoding, IgnoresUnknownKeysAtEveryLevel) {
    const QByteArray unknown =
        R"("extra" : {"a" : [null, true, false, -1.5e3, "x\n", {}, []], "id" : 7, "text" : null}, )";
    for (const QByteArray key :
         {"\"history\"", "\"createdAt\"", "\"autoPaste\"", "\"content\"", "\"aliases\""})
        EXPECT_EQ(decodeLibrary(changed(key, unknown + key)), samples::library())
            << key.toStdString();
}

TEST(LibraryDecoding, FindsKeysThatAreWrittenWithEscapes) {
    EXPECT_EQ(decodeLibrary(changed("\"history\"", R"("h\u0069st\u006Fry")")), samples::library());
}

TEST(LibraryDecoding, TakesUuidsInEitherCase) {
    EXPECT_EQ(decodeLibrary(changed("3F2504E0-4F89-41D3", "3f2504e0-4f89-41D3")),
              samples::library());
}

TEST(LibraryDecoding, GivesAnEntryWithoutAliasesAnEmptyList) {
    const QByteArray aliases =
        "\"aliases\" : [\n        \"cube control\",\n        \"cube cuddle\"\n      ],";
    EXPECT_EQ(decodeLibrary(changed(aliases, "")).vocabulary.first().aliases, QStringList());
    EXPECT_EQ(decodeLibrary(changed(aliases, "\"aliases\" : null,")).vocabulary.first().aliases,
              QStringList());
}

TEST(LibraryDecoding, NormalisesAliases) {
    QByteArray file = changed("[\n        \"cube control\",\n        \"cube cuddle\"\n      ]",
                              R"([" Foo ", "foo", "", "Bar"])");
    file.replace("kube ctl", "bar");
    EXPECT_EQ(decodeLibrary(file).vocabulary.first().aliases, QStringList(u"Foo"_s));
}

TEST(LibraryDecoding, LooksAtNoVersionAndMergesNothing) {
    EXPECT_EQ(
        decodeLibrary(changed("\"schemaVersion\" : 2", "\"schemaVersion\" : 9")).schemaVersion, 9);
}

// --- The spelling of values

TEST(LibraryDecoding, TakesEveryEscapeOfAString) {
    EXPECT_EQ(scratchpad(R"("\"\\\/\b\f\n\r\t\u00e9\u00C9")"), u"\"\\/\b\f\n\r\t\u00E9\u00C9"_s);
    EXPECT_EQ(scratchpad(R"("/a\/b")"), u"/a/b"_s);
    EXPECT_EQ(scratchpad(R"("\ud83d\ude00\uD83D\uDE00")"), u"\U0001F600\U0001F600"_s);
    EXPECT_EQ(scratchpad(R"("a\u0000b")"), u'a' + QString(QChar(u'\0')) + u'b');
}

TEST(LibraryDecoding, KeepsUnpairedSurrogatesThatWereEscaped) {
    EXPECT_EQ(scratchpad(R"("\ud83dx\ude00")"), QChar(0xD83D) + u"x"_s + QChar(0xDE00));
}

TEST(LibraryDecoding, KeepsPlainUtf8AsItIs) {
    const QString text = u"\u00E9\u65E5\U0001F600\u007F\u2028\uFFFF"_s;
    EXPECT_EQ(scratchpad('"' + text.toUtf8() + '"'), text);
}

TEST(LibraryDecoding, KeepsAByteOrderMarkInsideAString) {
    const QString mark = QChar(QChar::ByteOrderMark);
    EXPECT_EQ(scratchpad('"' + (mark + mark + u'a').toUtf8() + '"'), mark + mark + u'a');
    EXPECT_EQ(scratchpad("\"\\n" + mark.toUtf8() + '"'), u'\n' + mark);
}

TEST(LibraryDecoding, TakesEverySpellingOfANumber) {
    EXPECT_EQ(duration("425e-2"), 4.25);
    EXPECT_EQ(duration("0.0425E+2"), 4.25);
    EXPECT_EQ(duration("4"), 4);
    EXPECT_EQ(duration("-0"), 0);
    EXPECT_EQ(duration("-1.5"), -1.5);
    EXPECT_EQ(duration("12345678901234567890123"), 12345678901234567890123.0);
}

TEST(LibraryDecoding, TakesEverySpellingOfAnInteger) {
    const auto version = [](const QByteArray &literal) {
        return decodeLibrary(changed("\"schemaVersion\" : 2", "\"schemaVersion\" : " + literal))
            .schemaVersion;
    };
    EXPECT_EQ(version("2.0"), 2);
    EXPECT_EQ(version("0.2e1"), 2);
    EXPECT_EQ(version("-0"), 0);
    EXPECT_EQ(version("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(version("-9223372036854775808"), INT64_MIN);
}

TEST(LibraryDecoding, TakesEveryDateOfTheCalendar) {
    const auto date = [](const QByteArray &text) {
        return decodeLibrary(changed("2026-03-14T09:26:53Z", text)).history.first().createdAt;
    };
    EXPECT_EQ(date("2024-02-29T23:59:59Z"),
              QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59), Qt::UTC));
    EXPECT_EQ(date("1600-01-01T00:00:00Z"), QDateTime(QDate(1600, 1, 1), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(date("9999-12-31T23:59:59Z"),
              QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), Qt::UTC));
}

// --- What fails, and how that is told

TEST(LibraryDecodingFailure, NamesTheKeyThatIsMissing) {
    EXPECT_EQ(failureOf("      \"text\" : \"Send the report today.\"", "      \"words\" : 4"),
              u"“history[0]” lacks the key “text” (line 3, column 5)."_s);
    EXPECT_EQ(failureOf("\"scratchpad\"", "\"scratch\""),
              u"The library file lacks the key “scratchpad” (line 1, column 1)."_s);
}

TEST(LibraryDecodingFailure, IsEveryMissingKeyButAliases) {
    for (const QByteArray key :
         {"history", "schemaVersion", "scratchpad", "settings", "snippets", "vocabulary",
          "createdAt", "duration", "id", "text", "autoPaste", "languageIdentifier", "removeFillers",
          "smartPunctuation", "content", "trigger", "phrase", "replacement"}) {
        EXPECT_TRUE(failureOf('"' + key + '"', "\"x\"")
                        .contains(u"lacks the key “%1”"_s.arg(QString::fromUtf8(key))))
            << key.toStdString();
    }
}

TEST(LibraryDecodingFailure, NamesThePlaceOfAWrongType) {
    EXPECT_EQ(failureOf("4.25", "\"4.25\""),
              u"“history[0].duration” is not a number (line 5, column 20)."_s);
    EXPECT_EQ(failureOf("\"cube cuddle\"", "null"),
              u"“vocabulary[0].aliases[1]” is not a string (line 29, column 9)."_s);
    EXPECT_EQ(failureOf("\"Send the report today.\"", "null"),
              u"“history[0].text” is not a string (line 7, column 16)."_s);
    EXPECT_EQ(failureOf("\"autoPaste\" : false", "\"autoPaste\" : 0"),
              u"“settings.autoPaste” is neither true nor false (line 13, column 19)."_s);
    EXPECT_EQ(failureOf("\"schemaVersion\" : 2", "\"schemaVersion\" : 2.5"),
              u"“schemaVersion” is not a whole number (line 10, column 21)."_s);
    EXPECT_EQ(failureOf("\"schemaVersion\" : 2", "\"schemaVersion\" : true"),
              u"“schemaVersion” is not a number (line 10, column 21)."_s);
    EXPECT_EQ(failure("[]"), u"The library file is not an object (line 1, column 1)."_s);
    EXPECT_EQ(failure(" null"), u"The library file is not an object (line 1, column 2)."_s);
    EXPECT_EQ(failureOf("\"settings\" : {", "\"settings\" : [], \"x\" : {"),
              u"“settings” is not an object (line 12, column 16)."_s);
    EXPECT_EQ(failureOf("\"snippets\" : [", "\"snippets\" : {}, \"x\" : ["),
              u"“snippets” is not an array (line 18, column 16)."_s);
    EXPECT_EQ(failureOf("\"aliases\" : [", "\"aliases\" : false, \"x\" : ["),
              u"“vocabulary[0].aliases” is not an array (line 27, column 19)."_s);
}

TEST(LibraryDecodingFailure, CountsColumnsInCharacters) {
    EXPECT_EQ(failure("{\"\u00E9\u65E5\U0001F600\" : nul}"),
              u"The library file has a value that isn’t JSON (line 1, column 10)."_s);
}

TEST(LibraryDecodingFailure, IsAnythingThatIsNoUuid) {
    for (const QByteArray text :
         {"", "3F2504E0-4F89-41D3-9A0C-0305E82C330", "3F2504E0-4F89-41D3-9A0C-0305E82C33011",
          "{3F2504E0-4F89-41D3-9A0C-0305E82C3301}", "3F2504E04F8941D39A0C0305E82C3301",
          "3F2504E0-4F89-41D3-9A0C-0305E82C330G", "3F2504E-04F89-41D3-9A0C-0305E82C3301",
          " 3F2504E0-4F89-41D3-9A0C-0305E82C3301", "3F2504E0\\u20104F89-41D3-9A0C-0305E82C3301"})
        EXPECT_EQ(failureOf("3F2504E0-4F89-41D3-9A0C-0305E82C3301", text),
                  u"“history[0].id” is not a UUID (line 6, column 14)."_s)
            << text.toStdString();
}

TEST(LibraryDecodingFailure, IsAnythingThatIsNoSuchDate) {
    for (const QByteArray text : {"",
                                  "2026-03-14T09:26:53.5Z",
                                  "2026-03-14T09:26:53.000Z",
                                  "2026-03-14T09:26:53",
                                  "2026-03-14T09:26:53+00:00",
                                  "2026-03-14T09:26:53z",
                                  "2026-03-14 09:26:53Z",
                                  "2026-03-14",
                                  "2026-02-30T09:26:53Z",
                                  "2026-02-29T09:26:53Z",
                                  "2026-00-14T09:26:53Z",
                                  "2026-13-14T09:26:53Z",
                                  "2026-03-00T09:26:53Z",
                                  "2026-04-31T09:26:53Z",
                                  "2026-03-14T24:00:00Z",
                                  "2026-03-14T09:60:53Z",
                                  "2026-03-14T09:26:60Z",
                                  "12026-03-14T09:26:53Z",
                                  "-026-03-14T09:26:53Z",
                                  "2026-3-14T09:26:53Z",
                                  "2026-03-14T09:26Z",
                                  "2026-03-14T09:26:53Z ",
                                  "2026-03-14T+9:26:53Z",
                                  "2026-03-14T0\\u0669:26:53Z"})
        EXPECT_EQ(
            failureOf("2026-03-14T09:26:53Z", text),
            u"“history[0].createdAt” is not a date such as “2026-03-14T09:26:53Z” (line 4, column 21)."_s)
            << text.toStdString();
}

TEST(LibraryDecodingFailure, IsANumberOutOfRange) {
    for (const QByteArray number : {"1e309", "-1e309", "1e-400"})
        EXPECT_EQ(failureOf("4.25", number),
                  u"“history[0].duration” is a number out of range (line 5, column 20)."_s);
    for (const QByteArray number : {"9223372036854775808", "-9223372036854775809", "1e19", "1e400"})
        EXPECT_EQ(failureOf("\"schemaVersion\" : 2", "\"schemaVersion\" : " + number),
                  u"“schemaVersion” is a number out of range (line 10, column 21)."_s);
}

TEST(LibraryDecodingFailure, IsANumberThatJsonHasNot) {
    for (const QByteArray number : {"+1", ".5", "5.", "5.e1", "1e", "1e+", "-", "01", "0x1", "1_0",
                                    "NaN", "Infinity", "-Infinity", "--1", "1,5"})
        EXPECT_FALSE(failureOf("4.25", number).isEmpty()) << number.toStdString();
}

TEST(LibraryDecodingFailure, IsAStringThatJsonHasNot) {
    for (const QByteArray string :
         {R"("\x")", R"("\u12")", R"("\u12g4")", R"("\u+123")", R"("\u 123")", R"("\U0041")",
          R"('')", "\"a\nb\"", "\"a\tb\"", "\"\x01\"", R"("\)", R"("\")", "\"\\\0\""})
        EXPECT_FALSE(failureOf("\"scratchpad\" : \"\"", "\"scratchpad\" : " + string).isEmpty())
            << string.toStdString();
    EXPECT_FALSE(
        failureOf("\"scratchpad\" : \"\"", QByteArray("\"scratchpad\" : \"\0\"", 18)).isEmpty());
}

TEST(LibraryDecodingFailure, IsAnySlackInTheGrammar) {
    using Change = std::pair<QByteArray, QByteArray>;
    for (const auto &[from, to] :
         {Change{"\"scratchpad\" : \"\",", "\"scratchpad\" : \"\",,"},
          Change{"\"scratchpad\" : \"\",", "\"scratchpad\" : \"\""},
          Change{"\"scratchpad\" :", "\"scratchpad\""}, Change{"\"scratchpad\"", "scratchpad"},
          Change{"\"scratchpad\"", "'scratchpad'"}, Change{"\"cube cuddle\"", "\"cube cuddle\","},
          Change{"\"replacement\" : \"kubectl\"", "\"replacement\" : \"kubectl\","},
          Change{"\"scratchpad\"", "// why\n\"scratchpad\""}, Change{"true", "True"},
          Change{"true", "truer"}, Change{"false", "fals"}, Change{"[\n    {", "[,{"},
          Change{"{\n  \"history\"", "\f{\n  \"history\""}})
        EXPECT_FALSE(failureOf(from, to).isEmpty()) << to.toStdString();
}

TEST(LibraryDecodingFailure, IsSlackInValuesThatAreSkippedToo) {
    for (const QByteArray value :
         {"[1,]", "{\"a\":}", "{\"a\"}", "nul", "tru", "01", "\"\\x\"", "{a:1}", "[", "@"})
        EXPECT_FALSE(failureOf("\"history\"", "\"extra\" : " + value + ", \"history\"").isEmpty())
            << value.toStdString();
}

TEST(LibraryDecodingFailure, TellsWhatTheGrammarAskedFor) {
    EXPECT_EQ(failureOf("\"scratchpad\" : \"\",", "\"scratchpad\" : \"\""),
              u"The library file lacks a “,” or “}” (line 12, column 3)."_s);
    EXPECT_EQ(failureOf("\"scratchpad\" :", "\"scratchpad\""),
              u"The library file lacks a “:” after a key (line 11, column 16)."_s);
    EXPECT_EQ(failureOf("\"scratchpad\"", "scratchpad"),
              u"The library file lacks a key in quotation marks (line 11, column 3)."_s);
}

TEST(LibraryDecodingFailure, IsAKnownKeyThatStandsTwice) {
    EXPECT_EQ(failureOf("\"schemaVersion\" : 2,", "\"schemaVersion\" : 2, \"schemaVersion\" : 2,"),
              u"The library file has the key “schemaVersion” twice (line 10, column 24)."_s);
    EXPECT_EQ(failureOf("\"trigger\"", R"("tr\u0069gger" : "", "trigger")"),
              u"“snippets[0]” has the key “trigger” twice (line 22, column 28)."_s);
}

TEST(LibraryDecodingFailure, IsAnythingAfterTheEnd) {
    const QByteArray file = samples::libraryFile();
    EXPECT_EQ(failure(file + " x"),
              u"The library file has something after its end (line 36, column 3)."_s);
    for (const QByteArray &tail : {QByteArray("}"), QByteArray(","), QByteArray(1, '\0'), file})
        EXPECT_TRUE(failure(file + tail).contains(u"has something after its end"_s));
}

TEST(LibraryDecodingFailure, IsEveryTruncation) {
    const QByteArray file = samples::libraryFile();
    for (qsizetype size = 0; size < file.size(); ++size)
        EXPECT_FALSE(failure(file.first(size)).isEmpty()) << size;
    EXPECT_EQ(failure(""), u"The library file ends too early (line 1, column 1)."_s);
    EXPECT_EQ(failure(" \n"), u"The library file ends too early (line 2, column 1)."_s);
}

TEST(LibraryDecodingFailure, IsInvalidUtf8) {
    for (const QByteArray bytes :
         {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\xBD", "\xF4\x90\x80\x80", "\xFF", "\xE6\x97"})
        EXPECT_EQ(failureOf("\"scratchpad\" : \"", "\"scratchpad\" : \"" + bytes),
                  u"The library file is not UTF-8 (line 11, column 19)."_s)
            << bytes.toHex().toStdString();
    EXPECT_FALSE(failure(QString::fromUtf8(samples::libraryFile()).toLatin1().prepend("\xFF\xFE"))
                     .isEmpty());
}

TEST(LibraryDecodingFailure, IsAByteOrderMarkAtTheStart) {
    EXPECT_FALSE(failure("\xEF\xBB\xBF" + samples::libraryFile()).isEmpty());
}

TEST(LibraryDecodingFailure, IsADepthBomb) {
    for (const QByteArray opening : {"[", "{\"a\":"}) {
        EXPECT_TRUE(failure("{\"extra\" : " + opening.repeated(1'000'000))
                        .contains(u"is nested too deeply"_s));
    }
    EXPECT_TRUE(failure(QByteArray("[").repeated(1'000'000)).contains(u"is not an object"_s));
}

TEST(LibraryDecoding, ReadsNestingThatIsDeepButNoBomb) {
    const QByteArray deep = QByteArray("[").repeated(500) + QByteArray("]").repeated(500);
    EXPECT_EQ(decodeLibrary(changed("\"history\"", "\"extra\" : " + deep + ", \"history\"")),
              samples::library());
}

} // namespace
} // namespace lorvane
