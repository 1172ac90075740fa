#include "Speech/Level.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace lorvane {

namespace {

constexpr std::size_t windowSize = 512;
/// The root mean square that the loudest windows of a voice should reach, and the largest gain.
/// Measured: from some 15 dB below it on, the models begin to lose words.
constexpr float voiceLevel = 0.1F;
constexpr float largestGain = 100;
/// This many windows, 0.2 seconds, are louder than the one that is taken: words, not clicks.
constexpr std::size_t louderWindows = 6;

} // namespace

float gainFor(std::span<const float> samples) {
    std::vector<float> powers;
    for (; samples.size() >= windowSize; samples = samples.subspan(windowSize)) {
        float sum = 0;
        for (const float sample : samples.first(windowSize))
            sum += sample * sample;
        powers.push_back(sum / windowSize);
    }
    if (powers.size() <= louderWindows)
        return 1;
    const auto taken = powers.begin() + louderWindows;
    std::nth_element(powers.begin(), taken, powers.end(), std::greater());
    const float level = std::sqrt(*taken);
    return std::clamp(voiceLevel / std::max(level, voiceLevel / largestGain), 1.F, largestGain);
}

std::vector<float> amplified(std::span<const float> samples, float gain) {
    std::vector<float> louder(samples.begin(), samples.end());
    for (float &sample : louder)
        sample *= gain;
    return louder;
}

} // namespace lorvane
