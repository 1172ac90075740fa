#pragma once

#include "Speech/ModelFolder.h"
#include "Speech/OnnxRuntime.h"
#include "Speech/TokenTable.h"

#include <span>
#include <string>

namespace lorvane {

/// What a model makes of a stretch of voice: tokens, and for each of them how much it looked at
/// each moment of the audio.
struct Decoding {
    std::vector<Token> tokens;
    std::vector<float> attention; ///< row by row, tokens × frameCount, each row adds up to 1
    std::size_t frameCount = 0;   ///< of `secondsPerFrame` each
    double firstFrameTime = 0;    ///< where frame 0 stands in the samples, in seconds
};

/// An encoder and decoder of the Moonshine family. One thread at a time.
class SpeechModel {
public:
    static constexpr int sampleRate = 16000;
    static constexpr double secondsPerFrame = 0.024;
    /// Beyond this many seconds the model begins to lose itself in loops.
    static constexpr double longestStretch = 35;

    /// Throws LocalizedError.
    SpeechModel(OnnxRuntime &runtime, const ModelFiles &files);

    /// Transcribes mono samples at 16 kHz, -1 to 1, that are known to hold a voice: at least one
    /// token comes out. Throws LocalizedError, and Abandoned once `stop` is asked for.
    Decoding transcribe(std::span<const float> samples, const std::stop_token &stop);

private:
    class DecoderState;

    Ort::Value encode(std::vector<float> &samples, const std::stop_token &stop);

    Ort::Session encoder_;
    Ort::Session decoder_;
    int layerCount_ = 0;
    int64_t headCount_ = 0;
    int64_t headSize_ = 0;
    std::size_t alignmentHead_ = 0;
    double alignmentOffset_ = 0;
    std::vector<std::string> names_; ///< keeps the characters of those below
    std::vector<const char *> inputNames_;
    std::vector<const char *> firstOutputNames_;
    std::vector<const char *> laterOutputNames_;
};

} // namespace lorvane
