#pragma once

#include "Speech/Decoding.h"
#include "Speech/PhraseTrie.h"

#include <optional>

namespace lorvane {

/// How far a text has got in a phrase.
class PhraseProgress {
public:
    /// Takes the text's next token and gives what the text gains by it, less what it has gained by
    /// a phrase that it doesn't finish.
    float advance(Token token, const PhraseTrie &phrases, const TokenTable &tokens);

    PhraseTrie::Node node() const { return node_; }

private:
    PhraseTrie::Node node_ = PhraseTrie::root;
    float pending_ = 0;
};

/// Where a phrase stands in a text: tokens `first` up to `last`, which is not part of it.
struct PhraseSpan {
    int phrase = 0;
    std::size_t first = 0;
    std::size_t last = 0;
};

/// By so many letters a text, or a phrase, may be shorter than what it stands in place of. What
/// lacks more has come to its end too early: each word more makes a text less probable.
constexpr qsizetype mostLettersLost = 12;

/// Looks for the most probable text with a few texts side by side, where phrases are rewarded.
/// Without phrases, the most probable token at every step makes one of them, and no text is taken
/// that leaves out more of it than mostLettersLost; none at all when that one runs in a loop or
/// comes to no end. With phrases none when every text that it tries ends in a loop. Throws
/// LocalizedError, and Abandoned once `stop` is asked for.
std::optional<Decoding> searchBeam(DecoderSteps &decoder, std::size_t mostTokens,
                                   const PhraseTrie &phrases, const TokenTable &tokens,
                                   const std::stop_token &stop);

/// Writes down what was heard without phrases: errs less than decodeGreedily() and takes little
/// longer, since where the model is sure no second text is followed. Where it loses itself it is
/// the same as decodeGreedily(). Throws the same.
Decoding decodeWithBeam(Hearing &hearing, const TokenTable &tokens, const std::stop_token &stop);

/// The phrases in a text.
std::vector<PhraseSpan> findPhrases(std::span<const Token> text, const PhraseTrie &phrases,
                                    const TokenTable &tokens);

} // namespace lorvane
