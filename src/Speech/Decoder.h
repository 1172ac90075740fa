#pragma once

#include "Speech/DecoderSteps.h"
#include "Speech/OnnxRuntime.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace lorvane {

/// The decoder half of a Moonshine model, with the cross-attention as one more output. One thread
/// at a time.
class DecoderModel {
public:
    /// `alignmentHead` is the head of the cross-attention that follows the voice. Throws
    /// LocalizedError.
    DecoderModel(OnnxRuntime &runtime, const QString &path, int alignmentHead);

private:
    friend class Decoder;

    Ort::Session session_;
    std::size_t alignmentHead_;
    std::size_t layerCount_ = 0;
    int64_t headCount_ = 0;
    int64_t headSize_ = 0;
    std::vector<std::string> names_; ///< keeps the characters of those below
    std::vector<const char *> inputNames_;
    std::vector<const char *> firstOutputNames_;
    std::vector<const char *> laterOutputNames_;
};

/// Decodes one piece of encoded audio, any number of times. One thread at a time.
class Decoder : public DecoderSteps {
public:
    /// `hidden` is what the encoder made of the audio.
    Decoder(DecoderModel &model, Ort::Value hidden);

    DecoderStep begin(std::span<const Token> draft, const std::stop_token &stop) override;
    DecoderStep feed(std::span<const Token> tokens, std::span<const std::size_t> parents,
                     const std::stop_token &stop) override;

private:
    /// Makes new numbers out of a tensor's, and changes its shape.
    using Replacement =
        std::function<std::vector<float>(const float *numbers, std::vector<int64_t> &shape)>;

    void keepParents(std::span<const std::size_t> parents);
    void keepStartOfDraft(std::size_t tokenCount);
    void replaceKeysAndValues(const Replacement &replacement);
    DecoderStep step(const std::vector<Ort::Value> &outputs) const;

    DecoderModel &model_;
    std::vector<int64_t> draft_; ///< with the token before it
    std::vector<int64_t> tokens_;
    std::array<bool, 1> useCache_{};
    float noValue_ = 0; ///< where an empty tensor points
    std::vector<Ort::Value> inputs_;
    std::vector<Ort::Value> first_;        ///< scores, attention, keys and values after the draft
    std::vector<Ort::Value> latest_;       ///< the same after the last one
    std::vector<std::vector<float>> kept_; ///< keys and values, when texts were chosen anew
    std::size_t textCount_ = 0;
    bool isDraft_ = false; ///< the texts are those that the draft begins with
};

} // namespace lorvane
