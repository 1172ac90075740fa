#pragma once

#include "Platform/Speech.h"
#include "Speech/Decoding.h"
#include "Speech/TokenTable.h"

namespace lorvane {

/// A word with the punctuation that belongs to it, and its place in the audio in seconds.
struct TimedWord {
    QString text;
    double start = 0;
    double end = 0;
    /// The logarithm of its probability after the words before it, 0 where that wasn't asked for.
    double logProbability = 0;
};

/// The frame at which each row of `attention` (rows × frames) looks, so that the frames never go
/// back and the whole is the most probable: a Viterbi path.
std::vector<std::size_t> monotonePath(const std::vector<float> &attention, std::size_t frameCount);

/// The words of a decoding, with times from 0 to `duration` that never go back.
QList<TimedWord> timedWords(const Decoding &decoding, const TokenTable &tokens, double duration);

} // namespace lorvane
