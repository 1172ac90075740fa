#include "Speech/OwnWords.h"

#include <algorithm>

namespace lorvane {

namespace {

/// Two recognitions of the same word hardly ever differ by more than twice this in its place. The
/// less both keep, the less they can disagree on. Measured: see docs/recogniser.md.
constexpr double sharedMargin = 0.1;

} // namespace

QList<TimedWord> ownWords(const QList<TimedWord> &words, double duration,
                          const SpeechContext &context) {
    const double earliest = std::max(0.0, context.before - sharedMargin);
    const double latest = duration - std::max(0.0, context.after - sharedMargin);
    QList<TimedWord> own;
    for (const TimedWord &word : words) {
        if (word.start >= earliest && word.start <= latest)
            own.append(word);
    }
    return own;
}

} // namespace lorvane
