#include "Core/LibraryFormat.h"

#include "Core/Printing.h"
#include "Core/SampleLibrary.h"

#include <cmath>
#include <limits>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

QByteArray encodedDate(const QDateTime &date) {
    const QByteArray file = encodeLibrary({.history = {{QUuid(), date, QString(), 0}}});
    const qsizetype start = file.indexOf("\"createdAt\" : ") + 14;
    return file.sliced(start, file.indexOf(',', start) - start);
}

QByteArray encodedDuration(double duration) {
    const QByteArray file =
        encodeLibrary({.history = {{QUuid(), QDateTime::currentDateTimeUtc(), {}, duration}}});
    const qsizetype start = file.indexOf("\"duration\" : ") + 13;
    return file.sliced(start, file.indexOf(',', start) - start);
}

QByteArray encodedText(const QString &text) {
    const QByteArray file = encodeLibrary({.scratchpad = text});
    const qsizetype start = file.indexOf("\"scratchpad\" : ") + 15;
    return file.sliced(start, file.indexOf("\n  \"settings\"") - 1 - start);
}

TEST(LibraryEncoding, WritesTheSampleToTheByte) {
    EXPECT_EQ(encodeLibrary(samples::library()).toStdString(),
              samples::libraryFile().toStdString());
}

TEST(LibraryEncoding, WritesEveryKeyOfAnEmptyLibrary) {
    EXPECT_EQ(encodeLibrary({}).toStdString(), R"({
  "history" : [],
  "schemaVersion" : 2,
  "scratchpad" : "",
  "settings" : {
    "autoPaste" : false,
    "languageIdentifier" : "en-AU",
    "removeFillers" : true,
    "smartPunctuation" : true
  },
  "snippets" : [],
  "vocabulary" : []
})");
}

TEST(LibraryEncoding, WritesEmptyAliasesAsAnEmptyArray) {
    EXPECT_TRUE(encodeLibrary({.vocabulary = {{u"a"_s, u"b"_s}}}).contains("\"aliases\" : [],\n"));
}

TEST(LibraryEncoding, WritesTheVersionAsGiven) {
    EXPECT_TRUE(encodeLibrary({.schemaVersion = -7}).contains("\"schemaVersion\" : -7,\n"));
}

TEST(LibraryEncoding, PutsSeveralElementsInTheirOrder) {
    const QUuid id(u"3f2504e0-4f89-41d3-9a0c-0305e82c3301"_s);
    const QByteArray file =
        encodeLibrary({.snippets = {{id, u"a"_s, u"1"_s}, {id, u"b"_s, u"2"_s}}});
    EXPECT_TRUE(file.contains(R"("snippets" : [
    {
      "content" : "1",
      "id" : "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
      "trigger" : "a"
    },
    {
      "content" : "2",
      "id" : "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
      "trigger" : "b"
    }
  ])")) << file.toStdString();
}

TEST(LibraryEncoding, EscapesWhatJsonDemandsAndTheSlash) {
    EXPECT_EQ(encodedText(u"\"\\/\b\f\n\r\t"_s), R"("\"\\\/\b\f\n\r\t")");
}

TEST(LibraryEncoding, EscapesEveryOtherControlCharacter) {
    for (char16_t unit = 0; unit < 0x20; ++unit) {
        if (u"\b\f\n\r\t"_s.contains(QChar(unit)))
            continue;
        EXPECT_EQ(encodedText(QString(QChar(unit))),
                  "\"\\u" + QByteArray::number(unit, 16).rightJustified(4, '0') + '"');
    }
}

TEST(LibraryEncoding, WritesAllElseInUtf8) {
    const QString text = u"\u007F\u0080\u00E9\u07FF\u0800\u2028\u65E5\uFEFF\uFFFF\U0001F600"_s;
    EXPECT_EQ(encodedText(text), '"' + text.toUtf8() + '"');
}

TEST(LibraryEncoding, EscapesUnpairedSurrogates) {
    const QString high(QChar(0xD83D)), low(QChar(0xDE00));
    EXPECT_EQ(encodedText(high), R"("\ud83d")");
    EXPECT_EQ(encodedText(low + high), R"("\ude00\ud83d")");
    EXPECT_EQ(encodedText(high + high + low + u'a'), QByteArray(R"("\ud83d😀a")"));
}

TEST(LibraryEncoding, WritesNumbersAsShortAsTheyReadBack) {
    EXPECT_EQ(encodedDuration(0), "0");
    EXPECT_EQ(encodedDuration(4), "4");
    EXPECT_EQ(encodedDuration(0.1), "0.1");
    EXPECT_EQ(encodedDuration(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(encodedDuration(1e300), "1e+300");
}

TEST(LibraryEncoding, WritesDatesInUtcWithoutTheirFraction) {
    const QDate day(2026, 3, 14);
    EXPECT_EQ(encodedDate(QDateTime(day, QTime(12, 0, 0, 750), Qt::UTC)),
              R"("2026-03-14T12:00:00Z")");
    EXPECT_EQ(encodedDate(QDateTime(day, QTime(1, 0), Qt::OffsetFromUTC, 7200)),
              R"("2026-03-13T23:00:00Z")");
    EXPECT_EQ(encodedDate(QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59, 999), Qt::UTC)),
              R"("1969-12-31T23:59:59Z")");
    EXPECT_EQ(encodedDate(QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), Qt::UTC)),
              R"("9999-12-31T23:59:59Z")");
}

TEST(LibraryEncoding, RefusesADateThatItsFormHasNoRoomFor) {
    EXPECT_THROW(encodedDate(QDateTime()), EncodingError);
    EXPECT_THROW(encodedDate(QDateTime(QDate(10000, 1, 1), QTime(0, 0), Qt::UTC)), EncodingError);
    EXPECT_THROW(encodedDate(QDateTime(QDate(-2, 1, 1), QTime(0, 0), Qt::UTC)), EncodingError);
}

TEST(LibraryEncoding, RefusesADurationThatIsNoNumber) {
    EXPECT_THROW(encodedDuration(std::nan("")), EncodingError);
    EXPECT_THROW(encodedDuration(std::numeric_limits<double>::infinity()), EncodingError);
    EXPECT_THROW(encodedDuration(-std::numeric_limits<double>::infinity()), EncodingError);
}

} // namespace
} // namespace lorvane
