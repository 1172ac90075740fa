#include "Speech/StretchCutter.h"
#include "Speech/SpeechModel.h"

#include <gtest/gtest.h>

#include <random>

namespace lorvane {
namespace {

struct Part {
    double seconds;
    float probability;
};

std::vector<float> windows(const std::vector<Part> &parts) {
    std::vector<float> probabilities;
    double end = 0;
    for (const Part &part : parts) {
        end += part.seconds;
        while (static_cast<double>(probabilities.size()) * VoiceActivity::secondsPerWindow < end)
            probabilities.push_back(part.probability);
    }
    return probabilities;
}

double durationOf(const std::vector<float> &probabilities) {
    return static_cast<double>(probabilities.size()) * VoiceActivity::secondsPerWindow;
}

std::vector<VoiceSpan> settled(StretchCutter &cutter, const std::vector<float> &probabilities) {
    std::vector<VoiceSpan> stretches;
    for (const float probability : probabilities) {
        if (const auto stretch = cutter.add(probability))
            stretches.push_back(*stretch);
    }
    return stretches;
}

std::vector<VoiceSpan> cut(const std::vector<float> &probabilities) {
    StretchCutter cutter;
    std::vector<VoiceSpan> stretches = settled(cutter, probabilities);
    const std::vector<VoiceSpan> rest = cutter.finish(durationOf(probabilities));
    stretches.insert(stretches.end(), rest.begin(), rest.end());
    return stretches;
}

TEST(StretchCutter, KeepsASentenceWithItsPausesInOnePiece) {
    const auto stretches =
        cut(windows({{1, 0}, {1.5, 1}, {3.5, 0}, {4, 1}, {0.9, 0}, {4, 1}, {2, 0}}));
    ASSERT_EQ(stretches.size(), 1U);
    EXPECT_NEAR(stretches[0].start, 0.6, 0.05);
    EXPECT_NEAR(stretches[0].end, 15.4, 0.05);
}

TEST(StretchCutter, CutsBetweenSentences) {
    const auto stretches = cut(windows({{1, 0}, {7, 1}, {1.1, 0}, {4, 1}, {2, 0}}));
    ASSERT_EQ(stretches.size(), 2U);
    EXPECT_NEAR(stretches[0].end, 8.5, 0.05);
    EXPECT_NEAR(stretches[1].start, 8.7, 0.05);
}

TEST(StretchCutter, HasNoMarginBeyondTheAudio) {
    const std::vector<float> probabilities = windows({{0.1, 0}, {3, 1}, {0.1, 0}});
    const auto stretches = cut(probabilities);
    ASSERT_EQ(stretches.size(), 1U);
    EXPECT_EQ(stretches[0].start, 0);
    EXPECT_EQ(stretches[0].end, durationOf(probabilities));
}

TEST(StretchCutter, SettlesAStretchAtALongPauseAndALongStretchAtAShortOne) {
    StretchCutter cutter;
    EXPECT_EQ(settled(cutter, windows({{1, 0}, {2, 1}, {3.5, 0}})).size(), 0U);
    EXPECT_EQ(settled(cutter, windows({{0.6, 0}})).size(), 1U);
    EXPECT_EQ(settled(cutter, windows({{7, 1}, {0.9, 0}})).size(), 0U);
    EXPECT_EQ(settled(cutter, windows({{0.2, 0}})).size(), 1U);
    EXPECT_TRUE(cutter.finish(30).empty());
}

TEST(StretchCutter, CutsAVoiceWithoutSentencesAtItsWidestPause) {
    const auto stretches = cut(windows({{8, 1}, {0.4, 0}, {7, 1}, {0.6, 0}, {16, 1}}));
    ASSERT_EQ(stretches.size(), 2U);
    EXPECT_NEAR(stretches[0].end, 15.7, 0.05);
    EXPECT_NEAR(stretches[1].start, 15.7, 0.05);
    EXPECT_NEAR(stretches[1].end, 32, 0.05);
}

TEST(StretchCutter, CutsAVoiceWithoutPausesWhereItIsWeakest) {
    const auto stretches = cut(windows({{23, 1}, {0.04, 0.4F}, {40, 1}}));
    ASSERT_GE(stretches.size(), 2U);
    EXPECT_NEAR(stretches[0].end, 23, 0.1);
    EXPECT_EQ(stretches[1].start, stretches[0].end);
}

TEST(StretchCutter, HearsNothingInSilenceAndClicks) {
    EXPECT_TRUE(cut(windows({{60, 0}})).empty());
    EXPECT_TRUE(cut(windows({{5, 0}, {0.05, 1}, {5, 0}, {0.05, 1}, {5, 0}})).empty());
    EXPECT_TRUE(cut({}).empty());
}

TEST(StretchCutter, CutsRandomAudioInOrderAndLeavesNoVoiceOut) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 12; ++round) {
        std::vector<Part> parts;
        std::exponential_distribution<double> voice(1 / std::pow(4.0, round % 4));
        std::exponential_distribution<double> pause(round % 2 ? 1 : 3);
        double seconds = 0;
        while (seconds < 150) {
            parts.push_back({pause(random), 0.1F});
            parts.push_back({voice(random), 0.9F});
            seconds += parts.back().seconds;
        }
        const std::vector<float> probabilities = windows(parts);
        const std::vector<VoiceSpan> stretches = cut(probabilities);
        double end = 0;
        for (const VoiceSpan &stretch : stretches) {
            EXPECT_GE(stretch.start, end);
            EXPECT_GE(stretch.end, stretch.start + 0.1);
            EXPECT_LE(stretch.end - stretch.start, SpeechModel::longestStretch - 2);
            end = stretch.end;
        }
        EXPECT_LE(end, durationOf(probabilities));
        for (const VoiceSpan &span : voiceSpans(probabilities)) {
            double covered = 0;
            for (const VoiceSpan &stretch : stretches)
                covered += std::max(0.0, std::min(span.end, stretch.end) -
                                             std::max(span.start, stretch.start));
            EXPECT_NEAR(covered, span.end - span.start, 1e-6) << span.start;
        }

        // What has settled is never taken back.
        StretchCutter cutter;
        const std::size_t part = random() % (probabilities.size() + 1);
        const auto early =
            settled(cutter, {probabilities.begin(),
                             probabilities.begin() + static_cast<std::ptrdiff_t>(part)});
        ASSERT_LE(early.size(), stretches.size());
        for (std::size_t i = 0; i < early.size(); ++i) {
            EXPECT_EQ(early[i].start, stretches[i].start);
            EXPECT_EQ(early[i].end, stretches[i].end);
        }
    }
}

} // namespace
} // namespace lorvane
