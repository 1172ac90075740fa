#include "Views/Kit/TextSearch.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

bool finds(const QString &sought, const QString &text, const QLocale &locale = QLocale::English) {
    return TextSearch(sought, locale).isIn(text);
}

TEST(TextSearchTest, TheEmptyTextIsEverywhere) {
    EXPECT_TRUE(finds(u""_qs, u""_qs));
    EXPECT_TRUE(finds(u""_qs, u"something"_qs));
}

TEST(TextSearchTest, CaseDoesNotMatterButDiacriticsDo) {
    EXPECT_TRUE(finds(u"REPORT"_qs, u"the report today"_qs));
    EXPECT_TRUE(finds(u"straße"_qs, u"IN DER STRASSE"_qs));
    EXPECT_TRUE(finds(u"STRASSE"_qs, u"in der Straße"_qs));
    EXPECT_TRUE(finds(u"ÉCOLE"_qs, u"une école"_qs));
    EXPECT_TRUE(finds(u"ΌΣΟΣ"_qs, u"όσος"_qs)) << "both small sigmas";
    EXPECT_FALSE(finds(u"ecole"_qs, u"une école"_qs));
    EXPECT_FALSE(finds(u"écoles"_qs, u"une école"_qs));
    EXPECT_FALSE(finds(u"@["_qs, u"`{"_qs)) << "next to the letters";
}

TEST(TextSearchTest, BlanksArePartOfWhatIsSought) {
    EXPECT_TRUE(finds(u" "_qs, u"two words"_qs));
    EXPECT_FALSE(finds(u" "_qs, u"word"_qs));
    EXPECT_FALSE(finds(u"words "_qs, u"two words"_qs));
    EXPECT_TRUE(finds(u"two\nlines"_qs, u"Two\nlines"_qs));
}

TEST(TextSearchTest, ComposedAndDecomposedAreTheSame) {
    EXPECT_TRUE(finds(u"caf\u00e9"_qs, u"the cafe\u0301 there"_qs));
    EXPECT_TRUE(finds(u"cafe\u0301"_qs, u"the caf\u00e9 there"_qs));
    EXPECT_TRUE(finds(u"\uac00"_qs, u"\u1100\u1161"_qs)) << "a Hangul syllable and its letters";
}

TEST(TextSearchTest, AMatchEndsWhereACharacterEnds) {
    EXPECT_FALSE(finds(u"cafe"_qs, u"the cafe\u0301"_qs));
    EXPECT_TRUE(finds(u"cafe"_qs, u"the cafe\u0301 is a cafe"_qs)) << "a later one counts";
    EXPECT_FALSE(finds(u"q"_qs, u"q\u0303"_qs)) << "which no single unit stands for";
}

TEST(TextSearchTest, AllScriptsAndPairsOfUnitsAreSearched) {
    EXPECT_TRUE(finds(u"録音"_qs, u"この録音を保存"_qs));
    EXPECT_FALSE(finds(u"か"_qs, u"が"_qs));
    EXPECT_TRUE(finds(u"👍"_qs, u"good 👍 work"_qs));
    EXPECT_TRUE(finds(u"WORK"_qs, u"good 👍 work"_qs));
    EXPECT_TRUE(finds(u"𐐨"_qs, u"𐐀"_qs)) << "Deseret has case";
    EXPECT_TRUE(finds(QString(1, QChar(0)), QString(u"a"_qs).append(QChar(0))));
}

TEST(TextSearchTest, TurkishHasItsOwnPairsOfI) {
    const QLocale turkish(QLocale::Turkish);
    EXPECT_TRUE(finds(u"ISI"_qs, u"ısı"_qs, turkish));
    EXPECT_TRUE(finds(u"İZ"_qs, u"iz"_qs, turkish));
    EXPECT_FALSE(finds(u"ISI"_qs, u"isi"_qs, turkish));
    EXPECT_TRUE(finds(u"ISI"_qs, u"isi"_qs));
    EXPECT_FALSE(finds(u"ISI"_qs, u"ısı"_qs));
}

} // namespace
} // namespace lorvane
