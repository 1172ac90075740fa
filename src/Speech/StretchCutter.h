#pragma once

#include "Speech/VoiceActivity.h"

#include <optional>

namespace lorvane {

/// Cuts a stream of audio into the stretches to recognise while it is being heard. A stretch comes
/// out once nothing that follows could change it: only `finish` looks at where the audio ends. Each
/// holds a voice with a margin around it, is short enough for the model, and ends in a pause if
/// there is one. They come in order and never overlap.
class StretchCutter {
public:
    /// Takes the probability of a voice in the next window, and gives the stretch that it settles.
    std::optional<VoiceSpan> add(float probability);

    /// The rest of audio that is over after `duration` seconds. Nothing may be added after it.
    std::vector<VoiceSpan> finish(double duration);

    /// No stretch to come begins before this many seconds.
    double openStart() const { return openStart_; }

private:
    std::optional<VoiceSpan> next();
    VoiceSpan cutAfter(const std::vector<VoiceSpan> &spans, std::size_t last) const;
    VoiceSpan cutLong(const std::vector<VoiceSpan> &spans) const;
    VoiceSpan take(VoiceSpan stretch);
    void skipSilence(double heard);

    std::vector<float> probabilities_; ///< from `firstWindow_` on
    std::size_t firstWindow_ = 0;
    double openStart_ = 0;
    std::optional<double> duration_;
};

} // namespace lorvane
