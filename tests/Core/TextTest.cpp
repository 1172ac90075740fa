#include "Core/Text.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

// Half of a surrogate pair, which no encoder would produce.
const QString highHalf(QChar(0xD83D));
const QString lowHalf(QChar(0xDE00));
const QString nul(QChar(u'\0'));
const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
const QString flag = u"\U0001F1E6\U0001F1FA"_s;

TEST(Trimming, RemovesUnicodeWhitespaceAndLineBreaksFromBothEnds) {
    EXPECT_EQ(Text::trimmed(u"\t\n\v\f\r \u0085\u00A0\u1680\u2003\u2028\u2029\u202F\u205F\u3000a b"
                            u"\u3000\r\n "_s),
              u"a b"_s);
    EXPECT_EQ(Text::trimmed(u""_s), u""_s);
    EXPECT_EQ(Text::trimmed(u" \n\t "_s), u""_s);
    EXPECT_EQ(Text::trimmed(QString()), u""_s);
}

TEST(Trimming, KeepsWhatOnlyLooksBlank) {
    EXPECT_EQ(Text::trimmed(u"\u200Ba\uFEFF"_s), u"\u200Ba\uFEFF"_s); // zero width, no white space
    EXPECT_EQ(Text::trimmed(u' ' + nul + u' '), nul);
    EXPECT_EQ(Text::trimmed(u' ' + lowHalf + highHalf + u' '), lowHalf + highHalf);
}

TEST(Trimming, KeepsTheOrderOfRightToLeftText) {
    EXPECT_EQ(Text::trimmed(u" \u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627\n"_s),
              u"\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627"_s);
}

TEST(Trimming, OfPunctuationRemovesEveryCategoryOfIt) {
    // Connector, dash, open, close, initial and final quote, other; one beyond the basic plane.
    EXPECT_EQ(Text::trimmedOfPunctuation(u"_\u2014(\u00AB a.b \u00BB)!\u3002\U00010100"_s),
              u"a.b"_s);
    EXPECT_EQ(Text::trimmedOfPunctuation(u"+a$"_s), u"+a$"_s);
    EXPECT_EQ(Text::trimmedOfPunctuation(u"..."_s), u""_s);
    EXPECT_EQ(Text::trimmedOfPunctuation(highHalf + u'.'), highHalf);
}

TEST(Blanks, AreTextsOfWhitespaceAlone) {
    EXPECT_TRUE(Text::isBlank(u""_s));
    EXPECT_TRUE(Text::isBlank(u" \u2029\u00A0"_s));
    EXPECT_FALSE(Text::isBlank(u" . "_s));
    EXPECT_FALSE(Text::isBlank(nul));
}

TEST(WordCounts, AreRunsOfNonWhitespace) {
    EXPECT_EQ(Text::wordCount(u""_s), 0);
    EXPECT_EQ(Text::wordCount(u" \n\u3000 "_s), 0);
    EXPECT_EQ(Text::wordCount(u"  two\n words "_s), 2);
    EXPECT_EQ(Text::wordCount(u"a\u00A0b\u0085c\u2028d"_s), 4);
    EXPECT_EQ(Text::wordCount(u"one-two, three's"_s), 2);
    EXPECT_EQ(Text::wordCount(u"\u65E5\u672C\u8A9E\u3000\u306E"_s), 2);
    EXPECT_EQ(Text::wordCount(family + u' ' + flag), 2);
    EXPECT_EQ(Text::wordCount(highHalf + u' ' + nul + u"x"_s), 2);
    EXPECT_EQ(Text::wordCount(u"a\u200Bb"_s), 1);
}

TEST(CharacterCounts, AreOfUserPerceivedCharacters) {
    EXPECT_EQ(Text::characterCount(u""_s), 0);
    EXPECT_EQ(Text::characterCount(u"abc"_s), 3);
    EXPECT_EQ(Text::characterCount(u"caf\u00E9"_s), 4);
    EXPECT_EQ(Text::characterCount(u"cafe\u0301"_s), 4);
    EXPECT_EQ(Text::characterCount(u"e\u0301\u0327\u0323"_s), 1);
    EXPECT_EQ(Text::characterCount(u"\U0001D518x"_s), 2);
    EXPECT_EQ(Text::characterCount(family), 1);
    EXPECT_EQ(Text::characterCount(flag + flag), 2);
    EXPECT_EQ(Text::characterCount(u"\U0001F44D\U0001F3FD"_s), 1);
    EXPECT_EQ(Text::characterCount(u"\r\na\r"_s), 3);
    EXPECT_EQ(Text::characterCount(u"\u0915\u093F"_s), 1);
    EXPECT_EQ(Text::characterCount(u"\u1112\u1161\u11AB"_s), 1);
    EXPECT_EQ(Text::characterCount(u"\u304B\u3099"_s), 1);
    EXPECT_EQ(Text::characterCount(u"\u05E9\u05C1\u05B8"_s), 1);
    EXPECT_EQ(Text::characterCount(highHalf + u'a' + lowHalf + nul), 4);
}

TEST(CanonicalEquality, HoldsForComposedAndDecomposedText) {
    EXPECT_TRUE(Text::equalsCanonically(u"caf\u00E9"_s, u"cafe\u0301"_s));
    EXPECT_TRUE(Text::equalsCanonically(u"\u304C"_s, u"\u304B\u3099"_s));
    EXPECT_TRUE(Text::equalsCanonically(u"\uD55C"_s, u"\u1112\u1161\u11AB"_s));
    EXPECT_TRUE(Text::equalsCanonically(u"\u212B"_s, u"\u00C5"_s));
    EXPECT_TRUE(Text::equalsCanonically(u"a\u0323\u0302"_s, u"a\u0302\u0323"_s));
    EXPECT_TRUE(Text::equalsCanonically(u"\U0001D15E"_s, u"\U0001D157\U0001D165"_s));
    EXPECT_TRUE(Text::equalsCanonically(QString(), u""_s));
}

TEST(CanonicalEquality, FailsForWhatOnlyLooksAlike) {
    EXPECT_FALSE(Text::equalsCanonically(u"cafe"_s, u"caf\u00E9"_s));
    EXPECT_FALSE(Text::equalsCanonically(u"a"_s, u"A"_s));
    EXPECT_FALSE(Text::equalsCanonically(u"\uFB01"_s, u"fi"_s));       // compatibility only
    EXPECT_FALSE(Text::equalsCanonically(u"\u0301e"_s, u"e\u0301"_s)); // order of base and mark
    EXPECT_FALSE(Text::equalsCanonically(u"a"_s, u'a' + nul));
    EXPECT_FALSE(Text::equalsCanonically(highHalf, lowHalf));
    EXPECT_FALSE(Text::equalsCanonically(highHalf, u"\uFFFD"_s));
}

TEST(CaselessEquality, FoldsCaseWithoutALocale) {
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"Kube"_s, u"KUBE"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"stra\u00DFe"_s, u"STRASSE"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"\u039F\u0394\u039F\u03A3"_s,
                                              u"\u03BF\u03B4\u03BF\u03C2"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"\u03C3"_s, u"\u03C2"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"CAFE\u0301"_s, u"caf\u00E9"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"\U00010400"_s, u"\U00010428"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"\u212A"_s, u"k"_s));
    EXPECT_TRUE(Text::equalsCaseInsensitively(u"\u0130"_s, u"i\u0307"_s));
}

TEST(CaselessEquality, CountsDiacriticsAndTheDotlessI) {
    EXPECT_FALSE(Text::equalsCaseInsensitively(u"Kube"_s, u"Kub\u00E9"_s));
    EXPECT_FALSE(Text::equalsCaseInsensitively(u"\u0131"_s, u"I"_s));
    EXPECT_FALSE(Text::equalsCaseInsensitively(u"\u0130"_s, u"i"_s));
    EXPECT_FALSE(Text::equalsCaseInsensitively(u"\u304B"_s, u"\u304C"_s));
    EXPECT_FALSE(Text::equalsCaseInsensitively(u"\u3042"_s, u"\u30A2"_s));
    EXPECT_FALSE(Text::equalsCaseInsensitively(highHalf, lowHalf));
}

const QStringList specimens = {u""_s,
                               u"a"_s,
                               u"A"_s,
                               u"\u00E1"_s,
                               u"a\u0301"_s,
                               u"A\u0301"_s,
                               u"\u00C1"_s,
                               u"ss"_s,
                               u"SS"_s,
                               u"\u00DF"_s,
                               u"\u1E9E"_s,
                               u"i"_s,
                               u"I"_s,
                               u"\u0130"_s,
                               u"\u0131"_s,
                               u"i\u0307"_s,
                               u"\u03A3"_s,
                               u"\u03C2"_s,
                               u"\u03C3"_s,
                               u"\u0390"_s,
                               u"\u03B9\u0308\u0301"_s,
                               u"\u1FB3"_s,
                               u"\u1FBC"_s,
                               u"\u03B1\u0345"_s,
                               u"\u0391\u0345"_s,
                               u"\u03B1\u03B9"_s,
                               u"\u03B1\u0345\u0301"_s,
                               u"\u03B1\u0301\u0345"_s,
                               u"\u304B"_s,
                               u"\u304C"_s,
                               u"\u304B\u3099"_s,
                               u"\u212A"_s,
                               u"k"_s,
                               u"\uFB01"_s,
                               u"fi"_s,
                               family,
                               flag,
                               highHalf,
                               lowHalf,
                               highHalf + u'x',
                               nul,
                               u'a' + nul,
                               u"\u05E9\u05C1"_s,
                               u"\u05E9"_s,
                               u"\uFB2A"_s,
                               u"\U00010400"_s,
                               u"\U00010428"_s,
                               u"a\u0323\u0302"_s,
                               u"A\u0302\u0323"_s,
                               u"\u01C5"_s,
                               u"\u01C4"_s,
                               u"\u01C6"_s};

TEST(CanonicalKeys, AreEqualExactlyWhenTheTextsAre) {
    for (const QString &left : specimens) {
        for (const QString &right : specimens)
            EXPECT_EQ(Text::canonicalKey(left) == Text::canonicalKey(right),
                      Text::equalsCanonically(left, right))
                << testing::PrintToString(left) << testing::PrintToString(right);
    }
}

TEST(CaselessKeys, AreEqualExactlyWhenTheTextsAre) {
    for (const QString &left : specimens) {
        for (const QString &right : specimens)
            EXPECT_EQ(Text::caselessKey(left) == Text::caselessKey(right),
                      Text::equalsCaseInsensitively(left, right))
                << testing::PrintToString(left) << testing::PrintToString(right);
    }
}

TEST(Folding, RemovesCaseAndDiacritics) {
    EXPECT_EQ(Text::folded(u"S\u00EDgn \u00D3ff"_s), u"sign off"_s);
    EXPECT_EQ(Text::folded(u"Si\u0301gn O\u0301ff"_s), u"sign off"_s);
    EXPECT_EQ(Text::folded(u"\u00C5\u212B\u00E7\u1EC7"_s), u"aace"_s);
    EXPECT_EQ(Text::folded(u"stra\u00DFe"_s), u"strasse"_s);
    EXPECT_EQ(Text::folded(u"\u1F48\u03B4\u03C5\u03C3\u03C3\u03B5\u03CD\u03C2"_s),
              Text::folded(u"\u039F\u0394\u03A5\u03A3\u03A3\u0395\u03A5\u03A3"_s));
    EXPECT_EQ(Text::folded(u"\u0401\u0439"_s), u"\u0435\u0438"_s);
    EXPECT_EQ(Text::folded(u"\u05E9\u05C1\u05B8\u05DC\u05D5\u05B9\u05DD"_s),
              u"\u05E9\u05DC\u05D5\u05DD"_s);
    EXPECT_EQ(Text::folded(u"\u0645\u064E\u0631\u0652\u062D\u064E\u0628\u064B\u0627"_s),
              u"\u0645\u0631\u062D\u0628\u0627"_s);
}

TEST(Folding, TakesTheTurkishDotAwayButLeavesTheDotlessI) {
    EXPECT_EQ(Text::folded(u"\u0130I"_s), u"ii"_s);
    EXPECT_EQ(Text::folded(u"\u0131"_s), u"\u0131"_s);
}

TEST(Folding, LeavesMarksThatSpell) {
    EXPECT_NE(Text::folded(u"\u304B"_s), Text::folded(u"\u304C"_s));
    EXPECT_EQ(Text::folded(u"\u304C"_s), Text::folded(u"\u304B\u3099"_s));
    EXPECT_NE(Text::folded(u"\u0915\u093F"_s), Text::folded(u"\u0915"_s));
    EXPECT_NE(Text::folded(u"\u0E01\u0E34"_s), Text::folded(u"\u0E01"_s));
}

TEST(Folding, LeavesWhatHasNeitherCaseNorDiacritics) {
    EXPECT_EQ(Text::folded(family), family);
    EXPECT_EQ(Text::folded(highHalf + u'A' + nul + lowHalf), highHalf + u'a' + nul + lowHalf);
    EXPECT_EQ(Text::folded(u"\u0301x"_s), u"\u0301x"_s); // a mark without a letter
    EXPECT_EQ(Text::folded(u"\u00F8\u0142"_s), u"\u00F8\u0142"_s);
    EXPECT_EQ(Text::folded(u""_s), u""_s);
}

TEST(UppercaseStarts, RaiseTheFirstCharacterAlone) {
    EXPECT_EQ(Text::withUppercaseStart(u"hello World"_s), u"Hello World"_s);
    EXPECT_EQ(Text::withUppercaseStart(u""_s), u""_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\u00E9t\u00E9"_s), u"\u00C9t\u00E9"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"e\u0301te\u0301"_s), u"E\u0301te\u0301"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\U00010428\U00010428"_s), u"\U00010400\U00010428"_s);
}

TEST(UppercaseStarts, MayLengthen) {
    EXPECT_EQ(Text::withUppercaseStart(u"\u00DFeta"_s), u"SSeta"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\uFB01x"_s), u"FIx"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\u0390"_s), u"\u0399\u0308\u0301"_s);
}

TEST(UppercaseStarts, AskForNoLocale) {
    EXPECT_EQ(Text::withUppercaseStart(u"istanbul"_s), u"Istanbul"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\u0131s"_s), u"Is"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\u03C2"_s), u"\u03A3"_s);
    EXPECT_EQ(Text::withUppercaseStart(u"\u03CC\u03C7\u03B9"_s), u"\u038C\u03C7\u03B9"_s);
}

TEST(UppercaseStarts, LeaveWhatHasNoCase) {
    const QStringList texts{
        u"1st"_s,      u"(a)"_s,        u" a"_s,   u"\u65E5\u672C"_s, u"\u05E9\u05DC\u05D5\u05DD"_s,
        family + u'a', highHalf + u'a', nul + u'a'};
    for (const QString &text : texts)
        EXPECT_EQ(Text::withUppercaseStart(text), text);
}

TEST(Endings, AreLettersOrNumbersOfAnyScript) {
    const QStringList texts{
        u"a"_s,          u"x2"_s,           u"caf\u00E9"_s,    u"cafe\u0301"_s, u"\u65E5"_s,
        u"\u05DD"_s,     u"\u05E9\u05C1"_s, u"\u0663"_s,       u"\u2167"_s,     u"\u00BD"_s,
        u"\U0001D518"_s, u"\u304B\u3099"_s, u"\u0926\u0940"_s, nul + u'a'};
    for (const QString &text : texts)
        EXPECT_TRUE(Text::endsInLetterOrNumber(text)) << testing::PrintToString(text);
}

TEST(Endings, ArentLettersOrNumbersOtherwise) {
    const QStringList texts{u""_s,         u"a."_s,     u"a)"_s,         u"a\u201D"_s,
                            u"a "_s,       u"a_"_s,     u"a+"_s,         u"a\u3002"_s,
                            u'a' + family, u'a' + flag, u'a' + highHalf, u'a' + lowHalf,
                            u'a' + nul,    u"\u0301"_s};
    for (const QString &text : texts)
        EXPECT_FALSE(Text::endsInLetterOrNumber(text)) << testing::PrintToString(text);
}

// --- Every operation on every kind of text

struct Kind {
    const char *name;
    QString text;
    qsizetype words;
    qsizetype characters;
    QString folded;
    QString withUppercaseStart;
    bool endsInLetterOrNumber;
    QString otherCase;
};

void PrintTo(const Kind &kind, std::ostream *out) { *out << kind.name; }

class EveryKindOfText : public testing::TestWithParam<Kind> {};

TEST_P(EveryKindOfText, IsTrimmedCountedFoldedAndRaisedByUnicode) {
    const Kind &kind = GetParam();
    EXPECT_EQ(Text::trimmed(u" \u2029"_s + kind.text + u"\u3000\n"_s), kind.text);
    EXPECT_EQ(Text::trimmedOfPunctuation(u"(\u00BF"_s + kind.text + u"\u201D "_s), kind.text);
    EXPECT_FALSE(Text::isBlank(kind.text));
    EXPECT_EQ(Text::wordCount(kind.text), kind.words);
    EXPECT_EQ(Text::characterCount(kind.text), kind.characters);
    EXPECT_EQ(Text::folded(kind.text), kind.folded);
    EXPECT_EQ(Text::withUppercaseStart(kind.text), kind.withUppercaseStart);
    EXPECT_EQ(Text::endsInLetterOrNumber(kind.text), kind.endsInLetterOrNumber);
}

TEST_P(EveryKindOfText, IsComparedByUnicode) {
    const Kind &kind = GetParam();
    for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
        EXPECT_TRUE(Text::equalsCanonically(kind.text, kind.text.normalized(form)));
        EXPECT_TRUE(Text::equalsCaseInsensitively(kind.otherCase, kind.text.normalized(form)));
        EXPECT_EQ(Text::canonicalKey(kind.text), Text::canonicalKey(kind.text.normalized(form)));
        EXPECT_EQ(Text::caselessKey(kind.text), Text::caselessKey(kind.otherCase.normalized(form)));
        EXPECT_EQ(Text::folded(kind.text), Text::folded(kind.otherCase.normalized(form)));
    }
    EXPECT_EQ(Text::equalsCanonically(kind.text, kind.otherCase), kind.text == kind.otherCase);
    EXPECT_FALSE(Text::equalsCanonically(kind.text, kind.text + u'x'));
    EXPECT_FALSE(Text::equalsCaseInsensitively(kind.text, kind.text + u'x'));
}

std::string kindName(const testing::TestParamInfo<Kind> &kind) { return kind.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Text, EveryKindOfText,
    testing::Values(
        Kind{"Composed", u"caf\u00E9 \u00E9"_s, 2, 6, u"cafe e"_s, u"Caf\u00E9 \u00E9"_s, true,
             u"CAF\u00C9 \u00C9"_s},
        Kind{"Decomposed", u"cafe\u0301 e\u0301"_s, 2, 6, u"cafe e"_s, u"Cafe\u0301 e\u0301"_s,
             true, u"CAFE\u0301 E\u0301"_s},
        Kind{"Combining", u"e\u0327\u0301x\u0323"_s, 1, 2, u"ex"_s, u"E\u0327\u0301x\u0323"_s, true,
             u"E\u0327\u0301X\u0323"_s},
        Kind{"SurrogatePairs", u"\U00010428\U0001D518 \U00010429"_s, 2, 4,
             u"\U00010428\U0001D518 \U00010429"_s, u"\U00010400\U0001D518 \U00010429"_s, true,
             u"\U00010400\U0001D518 \U00010401"_s},
        Kind{"RightToLeft", u"\u05E9\u05C1\u05DC\u05D5\u05DD \u0645\u064E\u0631"_s, 2, 7,
             u"\u05E9\u05DC\u05D5\u05DD \u0645\u0631"_s,
             u"\u05E9\u05C1\u05DC\u05D5\u05DD \u0645\u064E\u0631"_s, true,
             u"\u05E9\u05C1\u05DC\u05D5\u05DD \u0645\u064E\u0631"_s},
        Kind{"TurkishI", u"\u0130i\u0131I"_s, 1, 4, u"ii\u0131i"_s, u"\u0130i\u0131I"_s, true,
             u"i\u0307I\u0131i"_s},
        Kind{"GreekSigma", u"\u03C2\u03C3\u03CC\u03C2"_s, 1, 4, u"\u03C3\u03C3\u03BF\u03C3"_s,
             u"\u03A3\u03C3\u03CC\u03C2"_s, true, u"\u03A3\u03A3\u038C\u03A3"_s},
        Kind{"SharpS", u"\u00DFa \u1E9E"_s, 2, 4, u"ssa ss"_s, u"SSa \u1E9E"_s, true, u"SSA ss"_s},
        Kind{"Japanese", u"\u304B\u3099\u304C \u65E5\u672C\u30FC"_s, 2, 6,
             u"\u304B\u3099\u304B\u3099 \u65E5\u672C\u30FC"_s,
             u"\u304B\u3099\u304C \u65E5\u672C\u30FC"_s, true,
             u"\u304B\u3099\u304C \u65E5\u672C\u30FC"_s},
        Kind{"EmojiSequences", family + flag + u" \U0001F44D\U0001F3FD"_s, 2, 4,
             family + flag + u" \U0001F44D\U0001F3FD"_s, family + flag + u" \U0001F44D\U0001F3FD"_s,
             false, family + flag + u" \U0001F44D\U0001F3FD"_s},
        Kind{"UnpairedSurrogatesAndNul", highHalf + u"a\u00E9"_s + lowHalf + nul, 1, 5,
             highHalf + u"ae"_s + lowHalf + nul, highHalf + u"a\u00E9"_s + lowHalf + nul, false,
             highHalf + u"A\u00C9"_s + lowHalf + nul}),
    kindName);

} // namespace
} // namespace lorvane
