#pragma once

#include "Speech/Decoding.h"

#include <cmath>
#include <map>

namespace lorvane {

inline const TokenTable &table() {
    static const TokenTable tokens(QStringLiteral(LORVANE_MODELS "/en/tokens.txt"));
    return tokens;
}

/// A decoder that knows a few sentences and how probable each is; all else is impossible. It looks
/// at frame n when it has written n tokens.
class KnownSentences : public DecoderSteps {
public:
    static constexpr std::size_t tokenCount = 32768;
    static constexpr std::size_t frameCount = 4;

    explicit KnownSentences(const std::map<QString, double> &sentences) {
        for (const auto &[text, probability] : sentences) {
            sentences_.push_back({{}, probability});
            if (!text.isEmpty())
                sentences_.back().tokens = table().encode(text);
            sentences_.back().tokens.push_back(TokenTable::end);
        }
    }

    DecoderStep begin(std::span<const Token> draft, const std::stop_token &) override {
        texts_ = {{}};
        for (auto end = draft.begin(); end != draft.end(); ++end)
            texts_.emplace_back(draft.begin(), end + 1);
        return step();
    }

    DecoderStep feed(std::span<const Token> tokens, std::span<const std::size_t> parents,
                     const std::stop_token &) override {
        std::vector<std::vector<Token>> texts;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            texts.push_back(texts_.at(parents[i]));
            texts.back().push_back(tokens[i]);
        }
        texts_ = std::move(texts);
        ++steps;
        widest = std::max(widest, texts_.size());
        return step();
    }

    std::size_t widest = 0; ///< the most texts side by side so far
    int steps = 0;          ///< after the first one

private:
    struct Sentence {
        std::vector<Token> tokens;
        double probability;
    };

    DecoderStep step() {
        scores_.assign(texts_.size() * tokenCount, -100);
        attention_.assign(texts_.size() * frameCount, 0);
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            const std::size_t length = texts_[i].size();
            attention_[i * frameCount + std::min(length, frameCount - 1)] = 1;
            std::map<Token, double> probabilities;
            for (const Sentence &sentence : sentences_) {
                if (sentence.tokens.size() > length &&
                    std::equal(texts_[i].begin(), texts_[i].end(), sentence.tokens.begin()))
                    probabilities[sentence.tokens[length]] += sentence.probability;
            }
            for (const auto &[token, probability] : probabilities)
                scores_[i * tokenCount + static_cast<std::size_t>(token)] =
                    static_cast<float>(std::log(probability));
        }
        return {scores_.data(), tokenCount, attention_.data(), frameCount, frameCount};
    }

    std::vector<Sentence> sentences_;
    std::vector<std::vector<Token>> texts_;
    std::vector<float> scores_;
    std::vector<float> attention_;
};

inline QString textOf(const Decoding &decoding) {
    QByteArray utf8;
    for (const Token token : decoding.tokens)
        utf8 += table().bytes(token);
    return QString::fromUtf8(utf8).trimmed();
}

} // namespace lorvane
