#pragma once

#include "Speech/SpeechModel.h"

#include <vector>

namespace lorvane {

/// What a model makes of a stretch of voice: tokens, and for each of them how much it looked at
/// each moment of the audio.
struct Decoding {
    std::vector<Token> tokens;
    std::vector<float> logProbabilities; ///< of each token after those before it, where asked for
    std::vector<float> attention; ///< row by row, tokens × frameCount, each row adds up to 1
    std::size_t frameCount = 0;   ///< of SpeechModel::secondsPerFrame each
    double firstFrameTime = 0;    ///< where frame 0 stands in the samples, in seconds
    /// The model began to repeat itself, or did not come to an end: what followed is not there.
    bool isBroken = false;
};

/// Writes down what was heard with the most probable token at every step: at least one, since there
/// is a voice. Where `draft` reads the same it costs next to nothing. Throws LocalizedError, and
/// Abandoned once `stop` is asked for.
Decoding decodeGreedily(Hearing &hearing, bool withLogProbabilities, const std::stop_token &stop,
                        std::span<const Token> draft = {});

/// The number of tokens at the end that only repeat what stands before them, 0 if the text is not
/// a loop.
std::size_t loopLength(std::span<const Token> tokens);

/// What is to be taken from a score to make it the logarithm of a probability.
float logNormalizer(std::span<const float> scores);

} // namespace lorvane
