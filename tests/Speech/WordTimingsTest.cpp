#include "Speech/WordTimings.h"
#include "Speech/KnownSentences.h"

#include <gtest/gtest.h>

#include <random>

namespace lorvane {
namespace {

/// Rows that look at one frame each.
Decoding decodingOf(const TokenTable &tokens, const QString &text,
                    const std::vector<std::size_t> &frames, std::size_t frameCount) {
    Decoding decoding;
    decoding.tokens = tokens.encode(text);
    decoding.frameCount = frameCount;
    for (std::size_t i = 0; i < decoding.tokens.size(); ++i) {
        std::vector<float> row(frameCount, 0.001F);
        row[frames[std::min(i, frames.size() - 1)]] = 0.9F;
        decoding.attention.insert(decoding.attention.end(), row.begin(), row.end());
    }
    return decoding;
}

TEST(MonotonePath, FollowsTheAttention) {
    // Three rows of four frames.
    const std::vector<float> attention{0.7F, 0.1F, 0.1F, 0.1F, 0.1F, 0.7F,
                                       0.1F, 0.1F, 0.1F, 0.1F, 0.1F, 0.7F};
    EXPECT_EQ(monotonePath(attention, 4), (std::vector<std::size_t>{0, 1, 3}));
}

TEST(MonotonePath, PassesOverALookBack) {
    const std::vector<float> attention{0.1F, 0.8F, 0.1F, 0.6F, 0.3F, 0.1F, 0.1F, 0.1F, 0.8F};
    EXPECT_EQ(monotonePath(attention, 3), (std::vector<std::size_t>{1, 1, 2}));
}

TEST(MonotonePath, NeverGoesBackWhateverTheAttention) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> probability(0, 1);
    for (int run = 0; run < 200; ++run) {
        const std::size_t frames = 1 + random() % 50;
        const std::size_t rows = random() % 30;
        std::vector<float> attention(rows * frames);
        for (float &value : attention)
            value = random() % 3 ? probability(random) : 0;
        const std::vector<std::size_t> path = monotonePath(attention, frames);
        ASSERT_EQ(path.size(), rows);
        for (std::size_t i = 0; i < rows; ++i) {
            ASSERT_LT(path[i], frames);
            if (i) {
                ASSERT_LE(path[i - 1], path[i]);
            }
        }
    }
}

TEST(MonotonePath, IsEmptyWithoutAttention) { EXPECT_TRUE(monotonePath({}, 0).empty()); }

TEST(TimedWords, AreJoinedFromTokensWithTheirPunctuation) {
    Decoding decoding = decodingOf(table(), u"Hello, unbelievable world!"_qs, {10, 20}, 100);
    const QList<TimedWord> words = timedWords(decoding, table(), 2.4);
    ASSERT_EQ(words.size(), 3);
    EXPECT_EQ(words[0].text, u"Hello,"_qs);
    EXPECT_EQ(words[1].text, u"unbelievable"_qs);
    EXPECT_EQ(words[2].text, u"world!"_qs);
    EXPECT_NEAR(words[0].start, 0.24, 1e-9);
    EXPECT_NEAR(words[0].end, 0.48, 1e-9);
    EXPECT_NEAR(words[1].start, 0.48, 1e-9);
}

TEST(TimedWords, AreAsProbableAsTheirTokensTogether) {
    Decoding decoding = decodingOf(table(), u"Hello, unbelievable – world!"_qs, {10, 20}, 100);
    double sum = 0;
    for (std::size_t i = 0; i < decoding.tokens.size(); ++i) {
        decoding.logProbabilities.push_back(-0.25F * static_cast<float>(i + 1));
        sum -= 0.25 * static_cast<double>(i + 1);
    }
    const QList<TimedWord> words = timedWords(decoding, table(), 2.4);
    ASSERT_EQ(words.size(), 3);
    EXPECT_EQ(words[0].logProbability, -0.25 - 0.5) << "its comma is a token";
    EXPECT_EQ(words[0].logProbability + words[1].logProbability + words[2].logProbability, sum);
    decoding.logProbabilities.clear();
    EXPECT_EQ(timedWords(decoding, table(), 2.4)[0].logProbability, 0);
}

TEST(TimedWords, StayInsideTheAudioAndNeverGoBack) {
    Decoding decoding = decodingOf(table(), u"one two three"_qs, {0, 99, 99}, 100);
    decoding.firstFrameTime = -0.3;
    const QList<TimedWord> words = timedWords(decoding, table(), 1.5);
    ASSERT_EQ(words.size(), 3);
    double last = 0;
    for (const TimedWord &word : words) {
        EXPECT_GE(word.start, last);
        EXPECT_GE(word.end, word.start);
        EXPECT_LE(word.end, 1.5);
        last = word.start;
    }
}

TEST(TimedWords, AreNoneForMarksAlone) {
    EXPECT_TRUE(timedWords(decodingOf(table(), u"♪ ♪ ..."_qs, {1}, 10), table(), 1).isEmpty());
}

TEST(TimedWords, KeepADashWithTheWordBeforeIt) {
    const auto words = timedWords(decodingOf(table(), u"now - then"_qs, {1, 2, 3}, 10), table(), 1);
    ASSERT_EQ(words.size(), 2);
    EXPECT_EQ(words[0].text, u"now -"_qs);
}

} // namespace
} // namespace lorvane
