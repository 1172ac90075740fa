#include "Core/ChunkTranscriptAssembly.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Words = QList<TranscribedWord>;

QString stitched(const QList<Words> &chunks) {
    ChunkTranscriptAssembly assembly;
    for (const Words &chunk : chunks)
        assembly.append(chunk);
    return assembly.text();
}

/// Words of 0.3 s, one each half second.
Words spoken(const QString &text, double start) {
    Words words;
    for (const QString &word : text.split(u' ')) {
        words.append({word, start, 0.3});
        start += 0.5;
    }
    return words;
}

/// Whether two spellings of a word that was heard twice at the same time become one.
bool areOne(const QString &left, const QString &right) {
    ChunkTranscriptAssembly assembly;
    assembly.append({{left, 10, 0.4}});
    assembly.append({{right, 10, 0.4}});
    return assembly.words().size() == 1;
}

TEST(ChunkStitching, TakesAllWordsOfTheFirstChunk) {
    ChunkTranscriptAssembly assembly;
    EXPECT_EQ(assembly.text(), QString());
    assembly.append(spoken(u"one two three"_s, 1));
    EXPECT_EQ(assembly.words(), spoken(u"one two three"_s, 1));
    EXPECT_EQ(assembly.text(), u"one two three"_s);
}

TEST(ChunkStitching, ChangesNothingForAnEmptyChunk) {
    ChunkTranscriptAssembly assembly;
    assembly.append({});
    assembly.append(spoken(u"one two"_s, 1));
    assembly.append({});
    EXPECT_EQ(assembly.words(), spoken(u"one two"_s, 1));
}

TEST(ChunkStitching, JoinsASingleWordThatSharesTime) {
    EXPECT_EQ(
        stitched({{{u"then"_s, 28.8, 0.2}, {u"we"_s, 29.1, 0.2}, {u"left"_s, 29.4, 0.4}},
                  {{u"left"_s, 29.5, 0.4}, {u"the"_s, 30.0, 0.2}, {u"building"_s, 30.3, 0.5}}}),
        u"then we left the building"_s);
}

TEST(ChunkStitching, KeepsTheEarlierCopyWithItsTimeAndSpelling) {
    ChunkTranscriptAssembly assembly;
    assembly.append({{u"Left."_s, 29.4, 0.4}});
    assembly.append({{u"left"_s, 29.5, 0.4}, {u"The"_s, 30.0, 0.2}});
    EXPECT_EQ(assembly.words(), (Words{{u"Left."_s, 29.4, 0.4}, {u"The"_s, 30.0, 0.2}}));
}

TEST(ChunkStitching, KeepsAWordThatWasSpokenTwiceAtADistance) {
    EXPECT_EQ(stitched({{{u"no"_s, 28.0, 0.3}}, {{u"no"_s, 28.6, 0.3}}}), u"no no"_s);
}

TEST(ChunkStitching, AllowsARunOfTwoMoreDistanceThanASingleWord) {
    EXPECT_EQ(stitched({{{u"no"_s, 28.0, 0.3}, {u"no"_s, 28.4, 0.3}},
                        {{u"no"_s, 28.6, 0.3}, {u"no"_s, 29.0, 0.3}}}),
              u"no no"_s);
}

TEST(ChunkStitching, KeepsARunWhoseStartsAreTooFarApart) {
    EXPECT_EQ(stitched({{{u"so"_s, 28.0, 0.2}, {u"it"_s, 28.3, 0.2}},
                        {{u"so"_s, 28.66, 0.2}, {u"it"_s, 28.9, 0.2}}}),
              u"so it so it"_s);
}

TEST(ChunkStitching, TakesToleranceStrictly) {
    EXPECT_EQ(
        stitched({{{u"a"_s, 0, 0.2}, {u"b"_s, 1, 0.2}}, {{u"a"_s, 0.65, 0.2}, {u"b"_s, 1, 0.2}}}),
        u"a a b b"_s);
    EXPECT_EQ(
        stitched({{{u"a"_s, 0, 0.2}, {u"b"_s, 1, 0.2}}, {{u"a"_s, 0.64, 0.2}, {u"b"_s, 1, 0.2}}}),
        u"a b"_s);
    EXPECT_EQ(stitched({{{u"a"_s, 0, 2}}, {{u"a"_s, 0.45, 2}}}), u"a a"_s);
    EXPECT_EQ(stitched({{{u"a"_s, 0, 2}}, {{u"a"_s, 0.44, 2}}}), u"a"_s);
}

TEST(ChunkStitching, AsksASingleWordForHalfItsTimeInCommon) {
    EXPECT_EQ(stitched({{{u"a"_s, 10, 0.4}}, {{u"a"_s, 10.2, 0.4}}}), u"a"_s);
    EXPECT_EQ(stitched({{{u"a"_s, 10, 0.4}}, {{u"a"_s, 10.21, 0.4}}}), u"a a"_s);
    EXPECT_EQ(stitched({{{u"a"_s, 10, 0.4}}, {{u"a"_s, 10.3, 0.1}}}), u"a"_s);
}

TEST(ChunkStitching, JoinsWordsWithoutADurationAtTheSameTime) {
    EXPECT_EQ(stitched({{{u"a"_s, 10, 0}}, {{u"a"_s, 10, 0}}}), u"a"_s);
    EXPECT_EQ(stitched({{{u"a"_s, 10, 0}}, {{u"a"_s, 10.1, 0}}}), u"a a"_s);
}

TEST(ChunkStitching, TriesEveryLengthThoughAShorterRunFailed) {
    // "three" against "one" fails at one word, "two three" against "one two" at two.
    EXPECT_EQ(
        stitched({spoken(u"zero one two three"_s, 28), spoken(u"one two three four"_s, 28.5)}),
        u"zero one two three four"_s);
}

TEST(ChunkStitching, TakesTheLongestOfSeveralRunsThatMatch) {
    EXPECT_EQ(stitched({{{u"no"_s, 28.0, 0.3}, {u"no"_s, 28.2, 0.3}, {u"no"_s, 28.4, 0.3}},
                        {{u"no"_s, 28.1, 0.3}, {u"no"_s, 28.3, 0.3}, {u"no"_s, 28.5, 0.3}}}),
              u"no no no"_s);
}

TEST(ChunkStitching, LooksAtThirtyWordsAtMost) {
    QStringList texts;
    for (int i = 0; i < 31; ++i)
        texts.append(QStringLiteral("w%1").arg(i));
    const auto joined = [&](int count) {
        const QString run = texts.first(count).join(u' ');
        return stitched({spoken(run, 0), spoken(run, 0)}).split(u' ').size();
    };
    EXPECT_EQ(joined(30), 30);
    EXPECT_EQ(joined(31), 62);
}

TEST(ChunkStitching, IgnoresCaseDiacriticsAndOuterPunctuation) {
    EXPECT_TRUE(areOne(u"Wow,"_s, u"wow"_s));
    EXPECT_TRUE(areOne(u"left."_s, u"left"_s));
    EXPECT_TRUE(areOne(u"caf\u00E9"_s, u"Cafe"_s));
    EXPECT_TRUE(areOne(u"cafe\u0301"_s, u"\u201CCAF\u00C9\u201D"_s));
    EXPECT_TRUE(areOne(u"\u00BFqu\u00E9?"_s, u"que"_s));
    EXPECT_TRUE(areOne(u" \u3000word\n"_s, u"word"_s));
    EXPECT_TRUE(areOne(u"\u039F\u0394\u039F\u03A3"_s, u"\u03BF\u03B4\u03CC\u03C2"_s));
}

TEST(ChunkStitching, KeepsInnerPunctuationAndOuterSymbols) {
    EXPECT_FALSE(areOne(u"it's"_s, u"its"_s));
    EXPECT_FALSE(areOne(u"C+"_s, u"C"_s));
    EXPECT_FALSE(areOne(u"$5"_s, u"5"_s));
    EXPECT_TRUE(areOne(u"C+."_s, u"c+"_s));
}

TEST(ChunkStitching, SortsTheWholeListAndKeepsTheOrderOfEqualStarts) {
    ChunkTranscriptAssembly assembly;
    assembly.append({{u"c"_s, 3, 0.1}, {u"a"_s, 1, 0.1}, {u"b"_s, 1, 0.1}});
    EXPECT_EQ(assembly.text(), u"a b c"_s);
    assembly.append({{u"x"_s, 2, 0.1}, {u"y"_s, 1, 0.1}, {u"z"_s, 3, 0.1}});
    EXPECT_EQ(assembly.text(), u"a b y x c z"_s);
}

TEST(ChunkStitching, TheTextIsTheWordsRendered) {
    EXPECT_EQ(stitched({{{u"Hi"_s, 0, 1}, {u","_s, 1, 0}}, {{u"you"_s, 30, 1}}}), u"Hi, you"_s);
}

TEST(ChunkStitching, JoinsAWholeSeamOfARecordingInThreeChunks) {
    EXPECT_EQ(stitched({spoken(u"we went to the old house"_s, 27),
                        spoken(u"The old house, by the river"_s, 28.6),
                        spoken(u"river and came back"_s, 31.1)}),
              u"we went to the old house by the river and came back"_s);
}

} // namespace
} // namespace lorvane
