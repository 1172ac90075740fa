#pragma once

#include "Speech/Decoder.h"
#include "Speech/ModelFolder.h"

#include <memory>
#include <span>

namespace lorvane {

/// A stretch of voice as a model has encoded it, to be written down in one way or another.
struct Hearing {
    std::unique_ptr<DecoderSteps> decoder;
    std::size_t mostTokens = 0; ///< that anybody can say in its time
    double firstFrameTime = 0;  ///< where frame 0 stands in the samples, in seconds
};

/// An encoder and decoder of the Moonshine family. One thread at a time.
class SpeechModel {
public:
    static constexpr int sampleRate = 16000;
    static constexpr double secondsPerFrame = 0.024; ///< of the attention
    /// Beyond this many seconds the model begins to lose itself in loops.
    static constexpr double longestStretch = 35;

    /// Throws LocalizedError.
    SpeechModel(OnnxRuntime &runtime, const ModelFiles &files);

    /// Encodes mono samples at 16 kHz, -1 to 1, that are known to hold a voice. Throws
    /// LocalizedError, and Abandoned once `stop` is asked for.
    Hearing hear(std::span<const float> samples, const std::stop_token &stop);

private:
    Ort::Session encoder_;
    DecoderModel decoder_;
    double alignmentOffset_ = 0;
};

} // namespace lorvane
