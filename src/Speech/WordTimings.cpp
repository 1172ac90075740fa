#include "Speech/WordTimings.h"

#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lorvane {

namespace {

/// A word is taken to last this long at least, and so long after its last token has begun at most.
constexpr double shortestWord = 0.04;
constexpr double longestLastToken = 0.5;

struct Piece {
    QByteArray utf8;
    double first = 0; ///< when its first and last tokens begin, in seconds
    double last = 0;
    double logProbability = 0;
};

/// Whether there is something to say in a text, not only marks.
bool isSpoken(const QString &text) {
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.isLetterOrNumber() || c.isSurrogate(); });
}

/// Joins tokens to words at the blanks.
std::vector<Piece> pieces(const Decoding &decoding, const TokenTable &tokens) {
    const std::vector<std::size_t> frames = monotonePath(decoding.attention, decoding.frameCount);
    std::vector<Piece> words;
    for (std::size_t i = 0; i < decoding.tokens.size(); ++i) {
        const double time =
            static_cast<double>(frames[i]) * SpeechModel::secondsPerFrame + decoding.firstFrameTime;
        // A token may hold several blanks, but it never goes on after one.
        const QByteArray bytes = tokens.bytes(decoding.tokens[i]);
        const QByteArray text = bytes.trimmed();
        const bool beginsWord = words.empty() || bytes.startsWith(' ');
        if (beginsWord && (words.empty() || !words.back().utf8.isEmpty()))
            words.push_back({{}, time, time, 0});
        else if (words.back().utf8.isEmpty())
            words.back().first = time;
        words.back().utf8 += text;
        words.back().last = time;
        if (!decoding.logProbabilities.empty())
            words.back().logProbability += static_cast<double>(decoding.logProbabilities[i]);
    }
    return words;
}

} // namespace

std::vector<std::size_t> monotonePath(const std::vector<float> &attention, std::size_t frameCount) {
    const std::size_t rowCount = frameCount ? attention.size() / frameCount : 0;
    std::vector<std::size_t> path(rowCount);
    if (rowCount == 0)
        return path;
    // best[f]: the best log-probability with the present row at f or before; from: where that is.
    std::vector<float> best(frameCount, 0.F);
    std::vector<uint32_t> from(rowCount * frameCount);
    for (std::size_t row = 0; row < rowCount; ++row) {
        float bestSoFar = -std::numeric_limits<float>::infinity();
        uint32_t bestFrame = 0;
        for (std::size_t frame = 0; frame < frameCount; ++frame) {
            const float probability = attention[row * frameCount + frame];
            const float here = best[frame] + std::log(std::max(probability, 1e-9F));
            if (here > bestSoFar) {
                bestSoFar = here;
                bestFrame = static_cast<uint32_t>(frame);
            }
            best[frame] = bestSoFar;
            from[row * frameCount + frame] = bestFrame;
        }
    }
    std::size_t frame = frameCount - 1;
    for (std::size_t row = rowCount; row-- > 0;) {
        frame = from[row * frameCount + frame];
        path[row] = frame;
    }
    return path;
}

QList<TimedWord> timedWords(const Decoding &decoding, const TokenTable &tokens, double duration) {
    QList<TimedWord> words;
    std::vector<double> lastTokens;
    for (const Piece &piece : pieces(decoding, tokens)) {
        const QString text = QString::fromUtf8(piece.utf8);
        if (isSpoken(text)) {
            words.append({text, piece.first, duration, piece.logProbability});
            lastTokens.push_back(piece.last);
        } else if (!words.isEmpty() && !text.isEmpty()) {
            words.last().text += u' ' + text; // a dash between two words
            words.last().logProbability += piece.logProbability;
        }
    }
    double earliest = 0;
    for (qsizetype i = 0; i < words.size(); ++i) {
        TimedWord &word = words[i];
        word.start = std::clamp(word.start, earliest, std::max(earliest, duration - shortestWord));
        earliest = word.start;
    }
    for (qsizetype i = 0; i < words.size(); ++i) {
        const double next = i + 1 < words.size() ? words[i + 1].start : duration;
        const double longest = lastTokens[static_cast<std::size_t>(i)] + longestLastToken;
        words[i].end = std::clamp(std::min(next, longest), words[i].start, duration);
    }
    return words;
}

} // namespace lorvane
