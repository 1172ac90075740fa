#pragma once

#include "Speech/VoiceActivity.h"

namespace lorvane {

/// Cuts audio of `duration` seconds, of whose windows the probabilities of a voice are known, into
/// the stretches to recognise: each holds a voice with a margin around it, is short enough for the
/// model, and ends where nobody speaks if there is such a place.
std::vector<VoiceSpan> planStretches(std::span<const float> probabilities, double duration);

} // namespace lorvane
