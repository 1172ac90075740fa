#include "Speech/Stretches.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

/// Probabilities of `seconds` with a voice in `spans`.
std::vector<float> voice(double seconds, const std::vector<VoiceSpan> &spans) {
    std::vector<float> probabilities(
        static_cast<std::size_t>(seconds / VoiceActivity::secondsPerWindow));
    for (std::size_t i = 0; i < probabilities.size(); ++i) {
        const double time = static_cast<double>(i) * VoiceActivity::secondsPerWindow;
        for (const VoiceSpan &span : spans) {
            if (time >= span.start && time < span.end)
                probabilities[i] = 0.9F;
        }
    }
    return probabilities;
}

TEST(VoiceSpans, IgnoreASingleWindow) {
    std::vector<float> probabilities(100);
    probabilities[50] = 0.77F;
    EXPECT_TRUE(voiceSpans(probabilities).empty());
}

TEST(VoiceSpans, GoOnOverAShortGap) {
    const auto spans = voiceSpans(voice(5, {{1, 2}, {2.1, 3}}));
    ASSERT_EQ(spans.size(), 1U);
    EXPECT_NEAR(spans[0].start, 1, 0.04);
    EXPECT_NEAR(spans[0].end, 3, 0.04);
}

TEST(Stretches, AreNoneWhereNobodySpeaks) {
    EXPECT_TRUE(planStretches(voice(30, {}), 30).empty());
    EXPECT_TRUE(planStretches({}, 0).empty());
}

TEST(Stretches, HaveAMarginAroundTheVoice) {
    const auto stretches = planStretches(voice(30, {{10, 12}}), 30);
    ASSERT_EQ(stretches.size(), 1U);
    EXPECT_NEAR(stretches[0].start, 9.6, 0.04);
    EXPECT_NEAR(stretches[0].end, 12.5, 0.04);
}

TEST(Stretches, StayInsideTheAudio) {
    const auto stretches = planStretches(voice(3, {{0, 3}}), 3);
    ASSERT_EQ(stretches.size(), 1U);
    EXPECT_EQ(stretches[0].start, 0);
    EXPECT_LE(stretches[0].end, 3);
}

TEST(Stretches, KeepAChunkWithPausesInOnePiece) {
    EXPECT_EQ(planStretches(voice(32, {{0, 10}, {11, 20}, {22, 32}}), 32).size(), 1U);
}

TEST(Stretches, LeaveOutALongPause) {
    const auto stretches = planStretches(voice(30, {{1, 2}, {20, 21}}), 30);
    ASSERT_EQ(stretches.size(), 2U);
    EXPECT_LT(stretches[0].end, 3);
    EXPECT_GT(stretches[1].start, 19);
}

TEST(Stretches, CutALongVoiceAtAPause) {
    const auto stretches = planStretches(voice(50, {{0, 18}, {18.5, 50}}), 50);
    ASSERT_EQ(stretches.size(), 2U);
    EXPECT_GT(stretches[0].end, 18);
    EXPECT_LT(stretches[0].end, 18.5);
}

TEST(Stretches, CutAVoiceWithoutAPauseWhereItIsWeakest) {
    std::vector<float> probabilities = voice(100, {{0, 100}});
    const auto window = static_cast<std::size_t>(24 / VoiceActivity::secondsPerWindow);
    probabilities[window] = 0.6F;
    const auto stretches = planStretches(probabilities, 100);
    ASSERT_GE(stretches.size(), 3U);
    EXPECT_NEAR(stretches[0].end, 24, 0.04);
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        EXPECT_LE(stretches[i].end - stretches[i].start, 35);
        if (i) {
            EXPECT_NEAR(stretches[i].start, stretches[i - 1].end, 1e-9) << "nothing is left out";
        }
    }
    EXPECT_NEAR(stretches.back().end, 100, 0.04);
}

} // namespace
} // namespace lorvane
