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

/// Looks for the most probable text with a few texts side by side, where phrases are rewarded.
/// None when every text that it tries ends in a loop. Throws LocalizedError, and Abandoned once
/// `stop` is asked for.
std::optional<Decoding> searchBeam(DecoderSteps &decoder, std::size_t mostTokens,
                                   const PhraseTrie &phrases, const TokenTable &tokens,
                                   const std::stop_token &stop);

/// The phrases in a text.
std::vector<PhraseSpan> findPhrases(std::span<const Token> text, const PhraseTrie &phrases,
                                    const TokenTable &tokens);

} // namespace lorvane
