#pragma once

#include "Speech/OnnxRuntime.h"

#include <array>
#include <span>
#include <vector>

namespace lorvane {

/// Where there is a voice, in seconds.
struct VoiceSpan {
    double start = 0;
    double end = 0;
};

/// The Silero detector's model, shared by those who listen. One thread at a time.
class VoiceActivityModel {
public:
    /// Throws LocalizedError.
    VoiceActivityModel(OnnxRuntime &runtime, const QString &path) : session_(runtime.open(path)) {}

private:
    friend class VoiceActivity;
    Ort::Session session_;
};

/// Listens to one stream of audio. One thread at a time.
class VoiceActivity {
public:
    static constexpr std::size_t windowSize = 512; ///< samples at 16 kHz
    static constexpr double secondsPerWindow = static_cast<double>(windowSize) / 16000;

    explicit VoiceActivity(VoiceActivityModel &model) : model_(model) {}

    /// Listens to more mono samples at 16 kHz. Throws LocalizedError, and Abandoned once `stop` is
    /// asked for: then it goes on at `position`.
    void listen(std::span<const float> samples, const std::stop_token &stop);

    /// The number of samples that it has listened to: whole windows.
    std::size_t position() const { return probabilities_.size() * windowSize; }

    /// The probability of a voice in each window so far.
    const std::vector<float> &probabilities() const { return probabilities_; }

private:
    static constexpr std::size_t contextSize = 64;

    VoiceActivityModel &model_;
    std::array<float, contextSize + windowSize> window_{}; ///< begins with the end of the last one
    std::array<float, 256> state_{};                       ///< of two layers
    std::vector<float> probabilities_;
};

/// Finds the spans that last, out of the probabilities of windows: a click or a breath is none.
std::vector<VoiceSpan> voiceSpans(std::span<const float> probabilities);

} // namespace lorvane
