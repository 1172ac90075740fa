#include "Speech/Resampler.h"
#include "Core/LocalizedError.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace lorvane {
namespace {

std::vector<float> tone(double rate, double frequency, double seconds) {
    std::vector<float> samples(static_cast<std::size_t>(rate * seconds));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / rate));
    return samples;
}

std::vector<float> resampled(double rate, const std::vector<float> &samples, std::size_t step) {
    Resampler resampler(rate);
    std::vector<float> output;
    for (std::size_t i = 0; i < samples.size(); i += step)
        resampler.process(std::span(samples).subspan(i, std::min(step, samples.size() - i)),
                          output);
    resampler.finish(output);
    return output;
}

class ResamplerTest : public testing::TestWithParam<double> {};

TEST_P(ResamplerTest, KeepsATone) {
    const double rate = GetParam();
    const std::vector<float> expected = tone(16000, 440, 1);
    const std::vector<float> output = resampled(rate, tone(rate, 440, 1), 2048);
    ASSERT_NEAR(static_cast<double>(output.size()), 16000, 2);
    for (std::size_t i = 200; i < 15800; ++i)
        ASSERT_NEAR(output[i], expected[i], 0.002) << "at sample " << i;
}

TEST_P(ResamplerTest, GivesTheSameInPiecesOfAnySize) {
    const double rate = GetParam();
    const std::vector<float> samples = tone(rate, 1000, 0.5);
    const std::vector<float> whole = resampled(rate, samples, samples.size());
    const std::vector<float> pieces = resampled(rate, samples, 37);
    ASSERT_EQ(whole.size(), pieces.size());
    for (std::size_t i = 0; i < whole.size(); ++i)
        ASSERT_NEAR(whole[i], pieces[i], 1e-5);
}

INSTANTIATE_TEST_SUITE_P(Rates, ResamplerTest,
                         testing::Values(8000, 16000, 22050, 44100, 48000, 96000, 192000));

TEST(Resampler, KeepsTheHighestSounds) {
    const std::vector<float> expected = tone(16000, 7700, 0.5);
    const std::vector<float> output = resampled(48000, tone(48000, 7700, 0.5), 2048);
    for (std::size_t i = 1000; i + 1000 < output.size(); ++i)
        ASSERT_NEAR(output[i], expected[i], 0.002) << "at sample " << i;
}

TEST(Resampler, RemovesWhatDoesNotFitTheNewRate) {
    const std::vector<float> output = resampled(48000, tone(48000, 12000, 0.5), 2048);
    for (std::size_t i = 200; i + 200 < output.size(); ++i)
        ASSERT_NEAR(output[i], 0, 0.001);
}

TEST(Resampler, RefusesARateThatIsNone) { EXPECT_THROW(Resampler(-1), LocalizedError); }

} // namespace
} // namespace lorvane
