#include "Core/TranscriptAssembly.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Words = QList<TranscribedWord>;

Words at(std::initializer_list<double> starts) {
    Words words;
    for (const double start : starts)
        words.append({QString::number(start), start, 0.2});
    return words;
}

QString rendered(const QStringList &texts) {
    Words words;
    for (const QString &text : texts)
        words.append({text, 0, 0});
    return TranscriptAssembly::render(words);
}

TEST(TranscribedWords, EndAfterTheirDuration) {
    EXPECT_EQ((TranscribedWord{u"a"_s, 1.5, 0.25}.end()), 1.75);
}

TEST(TranscribedWords, AreEqualWhenTextStartAndDurationAre) {
    const TranscribedWord word{u"caf\u00E9"_s, 1, 2};
    EXPECT_EQ(word, (TranscribedWord{u"cafe\u0301"_s, 1, 2}));
    EXPECT_NE(word, (TranscribedWord{u"Caf\u00E9"_s, 1, 2}));
    EXPECT_NE(word, (TranscribedWord{u"caf\u00E9"_s, 1.1, 2}));
    EXPECT_NE(word, (TranscribedWord{u"caf\u00E9"_s, 1, 2.1}));
}

TEST(TranscriptAssembly, StartsEmptyOrFromAList) {
    EXPECT_TRUE(TranscriptAssembly().words().isEmpty());
    EXPECT_EQ(TranscriptAssembly().text(), QString());
    EXPECT_EQ(TranscriptAssembly(at({1, 2})).words(), at({1, 2}));
}

TEST(TranscriptAssembly, ASnapshotReplacesEverything) {
    TranscriptAssembly assembly(at({1, 2, 3}));
    assembly.replaceSnapshot(at({2}));
    EXPECT_EQ(assembly.words(), at({2}));
}

TEST(TranscriptAssembly, AnEmptySnapshotWipesNothing) {
    TranscriptAssembly assembly(at({1, 2}));
    assembly.replaceSnapshot({});
    EXPECT_EQ(assembly.words(), at({1, 2}));
}

TEST(TranscriptAssembly, AnEmptyUpdateChangesNothing) {
    TranscriptAssembly assembly(at({1, 2}));
    assembly.update({});
    EXPECT_EQ(assembly.words(), at({1, 2}));
}

TEST(TranscriptAssembly, AnUpdateReplacesTheTailWithinItsSlack) {
    TranscriptAssembly assembly(at({1.0, 4.99, 5.30}));
    assembly.update(at({5.00, 5.5}));
    EXPECT_EQ(assembly.words(), at({1.0, 5.00, 5.5}));
}

TEST(TranscriptAssembly, AnUpdateKeepsAWordBeforeItsSlack) {
    TranscriptAssembly assembly(at({4.97}));
    assembly.update(at({5.00}));
    EXPECT_EQ(assembly.words(), at({4.97, 5.00}));
}

TEST(TranscriptAssembly, AnUpdateDropsAWordExactlyAtTheCut) {
    const double cut = 5.00 - 0.02;
    TranscriptAssembly assembly(at({cut}));
    assembly.update(at({5.00}));
    EXPECT_EQ(assembly.words(), at({5.00}));
}

TEST(TranscriptAssembly, AnUpdateDropsALaterWordThoughItEndsBefore) {
    TranscriptAssembly assembly(at({1, 60}));
    assembly.update(at({2, 3}));
    EXPECT_EQ(assembly.words(), at({1, 2, 3}));
}

TEST(TranscriptAssembly, AnUpdateDropsWordsWhereverTheyStandAndSortsNothing) {
    TranscriptAssembly assembly(at({7, 3, 8, 1}));
    assembly.update(at({5, 4}));
    EXPECT_EQ(assembly.words(), at({3, 1, 5, 4}));
}

TEST(TranscriptAssembly, TheTextIsTheWordsRendered) {
    EXPECT_EQ(TranscriptAssembly({{u"Hi"_s, 0, 1}, {u"."_s, 1, 0}}).text(), u"Hi."_s);
}

TEST(Rendering, PutsOneBlankBetweenWordsAndNoneBeforePunctuation) {
    EXPECT_EQ(rendered({u"Hello"_s, u","_s, u"world"_s, u"!"_s}), u"Hello, world!"_s);
    EXPECT_EQ(rendered({u"a"_s, u":"_s, u"b"_s}), u"a: b"_s);
    EXPECT_EQ(rendered({u"a"_s, u";"_s, u"b"_s, u"?"_s, u"c"_s, u"."_s}), u"a; b? c."_s);
}

TEST(Rendering, LeavesOtherPunctuationWithItsBlank) {
    EXPECT_EQ(rendered({u"a"_s, u")"_s, u"-"_s, u"\u3002"_s}), u"a ) - \u3002"_s);
}

TEST(Rendering, OfNothingIsEmpty) { EXPECT_EQ(rendered({}), QString()); }

TEST(Rendering, LosesAnyWhitespaceBeforePunctuation) {
    EXPECT_EQ(rendered({u"a"_s, u" "_s, u","_s}), u"a,"_s);
    EXPECT_EQ(rendered({u"a\n"_s, u","_s, u"b"_s}), u"a, b"_s);
    EXPECT_EQ(rendered({u"a\u00A0 \t"_s, u"!"_s}), u"a!"_s);
}

TEST(Rendering, TrimsNothing) {
    EXPECT_EQ(rendered({u" a"_s, u"b "_s}), u" a b "_s);
    EXPECT_EQ(rendered({u""_s, u""_s}), u" "_s);
}

TEST(Rendering, KeepsNulsAndUnpairedSurrogates) {
    const QString nul(QChar(u'\0'));
    const QString half(QChar(0xD83D));
    EXPECT_EQ(rendered({nul, half, u","_s}), nul + u' ' + half + u',');
}

} // namespace
} // namespace lorvane
