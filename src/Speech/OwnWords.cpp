#include "Speech/OwnWords.h"

#include "Core/Text.h"
#include "Speech/SameWords.h"

#include <algorithm>
#include <cmath>

namespace lorvane {

namespace {

/// Two recognitions put the same word at most so many seconds apart.
constexpr double timeTolerance = 0.3;
/// So far beyond the border a word is kept: one that a piece puts behind this is kept by the other.
constexpr double sharedMargin = timeTolerance / 2;

QString key(const QString &text) { return Text::trimmedOfPunctuation(Text::folded(text)); }

/// How many of the words stand before or among those that were written already.
qsizetype writtenCount(const QList<TimedWord> &words, const QList<TranscribedWord> &written) {
    const std::vector<int> same =
        sameWords(written.size(), words.size(), [&](qsizetype old, qsizetype word) {
            return std::abs(written[old].start - words[word].start) <= timeTolerance &&
                   key(written[old].text) == key(words[word].text);
        });
    return same.empty() ? 0 : *std::max_element(same.begin(), same.end()) + 1;
}

} // namespace

QList<TimedWord> ownWords(const QList<TimedWord> &words, double duration,
                          const SpeechContext &context) {
    const double earliest = std::max(0.0, context.before - sharedMargin);
    const double latest = duration - std::max(0.0, context.after - sharedMargin);
    QList<TimedWord> own;
    for (qsizetype i = writtenCount(words, context.written); i < words.size(); ++i) {
        if (words[i].start >= earliest && words[i].start <= latest)
            own.append(words[i]);
    }
    return own;
}

} // namespace lorvane
