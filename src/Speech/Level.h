#pragma once

#include <span>
#include <vector>

namespace lorvane {

/// By how much samples at 16 kHz have to be amplified for a voice in them to be as loud as the
/// models expect: at least 1. A click doesn't count as loud, nor does a short word as quiet.
float gainFor(std::span<const float> samples);

/// A louder copy.
std::vector<float> amplified(std::span<const float> samples, float gain);

} // namespace lorvane
