#pragma once

#include "Speech/TokenTable.h"

#include <span>
#include <stop_token>

namespace lorvane {

/// What a decoder says of the next token of each of some texts. Looks at the decoder's own memory:
/// valid until its next step.
struct DecoderStep {
    const float *scores = nullptr; ///< of every possible next token, text by text
    std::size_t tokenCount = 0;
    const float *attention = nullptr; ///< how much each moment of the audio was looked at
    std::size_t frameCount = 0;
    std::size_t attentionStride = 0; ///< from one text's attention to the next one's

    std::span<const float> scoresOf(std::size_t text) const {
        return {scores + text * tokenCount, tokenCount};
    }
    std::span<const float> attentionOf(std::size_t text) const {
        return {attention + text * attentionStride, frameCount};
    }
};

/// Texts that grow side by side, a token at a time, at little more than the cost of one of them.
class DecoderSteps {
public:
    DecoderSteps() = default;
    DecoderSteps(const DecoderSteps &) = delete;
    DecoderSteps &operator=(const DecoderSteps &) = delete;
    virtual ~DecoderSteps() = default;

    /// Begins anew with the texts that `draft` begins with, from the empty one to all of it: text i
    /// is its first i tokens. They cost little more than one of them; a single one of them can be
    /// gone on with. Throws LocalizedError, and Abandoned once `stop` is asked for.
    virtual DecoderStep begin(std::span<const Token> draft, const std::stop_token &stop) = 0;

    /// Goes on with as many texts as there are `tokens`: text i is text `parents[i]` of the step
    /// before and then `tokens[i]`. Throws the same.
    virtual DecoderStep feed(std::span<const Token> tokens, std::span<const std::size_t> parents,
                             const std::stop_token &stop) = 0;
};

} // namespace lorvane
