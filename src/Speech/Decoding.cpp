#include "Speech/Decoding.h"

#include <algorithm>
#include <cmath>

namespace lorvane {

std::size_t loopLength(std::span<const Token> tokens) {
    // People do say a word four times; a loop is longer.
    constexpr std::size_t repeats = 4;
    constexpr std::size_t leastLength = 12;
    constexpr std::size_t longestPhrase = 16;
    for (std::size_t phrase = 1; phrase <= longestPhrase; ++phrase) {
        const std::size_t length = std::max(phrase * repeats, leastLength / phrase * phrase);
        if (tokens.size() < length)
            continue;
        const auto tail = tokens.last(length);
        if (std::equal(tail.begin(), tail.end() - static_cast<std::ptrdiff_t>(phrase),
                       tail.begin() + static_cast<std::ptrdiff_t>(phrase)))
            return length - phrase;
    }
    return 0;
}

float logNormalizer(std::span<const float> scores) {
    // The rest, of some ten thousands, adds less than a ten-thousandth.
    constexpr float negligible = 20;
    const float highest = *std::max_element(scores.begin(), scores.end());
    float sum = 0;
    for (const float score : scores) {
        if (score > highest - negligible)
            sum += std::exp(score - highest);
    }
    return highest + std::log(sum);
}

Decoding decodeGreedily(Hearing &hearing, bool withLogProbabilities, const std::stop_token &stop,
                        std::span<const Token> draft) {
    Decoding decoding;
    decoding.firstFrameTime = hearing.firstFrameTime;
    DecoderStep step = hearing.decoder->begin(draft, stop);
    std::size_t text = 0; // of the step
    while (true) {
        const std::span<const float> scores = step.scoresOf(text);
        auto best = std::max_element(scores.begin(), scores.end());
        if (best - scores.begin() == TokenTable::end && decoding.tokens.empty()) {
            // There is a voice, so there are words: take the next best.
            best = std::max_element(best + 1, scores.end());
        }
        const auto token = static_cast<Token>(best - scores.begin());
        if (token == TokenTable::end)
            break;
        decoding.tokens.push_back(token);
        if (withLogProbabilities)
            decoding.logProbabilities.push_back(*best - logNormalizer(scores));
        const std::span<const float> attention = step.attentionOf(text);
        decoding.frameCount = attention.size();
        decoding.attention.insert(decoding.attention.end(), attention.begin(), attention.end());
        if (const std::size_t loop = loopLength(decoding.tokens)) {
            decoding.tokens.resize(decoding.tokens.size() - loop);
            decoding.attention.resize(decoding.tokens.size() * decoding.frameCount);
            if (withLogProbabilities)
                decoding.logProbabilities.resize(decoding.tokens.size());
            decoding.isBroken = true;
            break;
        }
        if (decoding.tokens.size() >= hearing.mostTokens) {
            decoding.isBroken = true;
            break;
        }
        if (text < draft.size() && draft[text] == token) {
            ++text;
            continue;
        }
        step = hearing.decoder->feed({&token, 1}, {&text, 1}, stop);
        text = 0;
        draft = {};
    }
    return decoding;
}

} // namespace lorvane
