#include "Core/ChunkTranscriptAssembly.h"

#include "Core/Text.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace lorvane {
namespace {

/// What is compared of a word: two recognitions of the same audio differ in case and punctuation.
QString key(const QString &text) { return Text::trimmedOfPunctuation(Text::folded(text)); }

/// A single word proves to be the same by sharing time; a run of words proves itself by agreeing.
bool overlapInTime(const TranscribedWord &left, const TranscribedWord &right) {
    const double shared = std::min(left.end(), right.end()) - std::max(left.start, right.start);
    return std::min(left.duration, right.duration) / 2 <= shared + 0.001;
}

/// The longest run at the end of `words` that is the run at the start of `incoming`.
qsizetype seamLength(const QList<TranscribedWord> &words, const QList<TranscribedWord> &incoming) {
    const qsizetype limit = std::min({qsizetype(30), words.size(), incoming.size()});
    QStringList leftKeys, rightKeys;
    for (qsizetype i = 0; i < limit; ++i) {
        leftKeys.append(key(words.at(words.size() - limit + i).text));
        rightKeys.append(key(incoming.at(i).text));
    }
    qsizetype longest = 0;
    for (qsizetype count = 1; count <= limit; ++count) {
        const double tolerance = count == 1 ? 0.45 : 0.65;
        bool matches = true;
        for (qsizetype i = 0; i < count && matches; ++i) {
            const TranscribedWord &left = words.at(words.size() - count + i);
            const TranscribedWord &right = incoming.at(i);
            matches = (count > 1 || overlapInTime(left, right)) &&
                      leftKeys.at(limit - count + i) == rightKeys.at(i) &&
                      std::abs(left.start - right.start) < tolerance;
        }
        if (matches)
            longest = count;
    }
    return longest;
}

} // namespace

void ChunkTranscriptAssembly::append(const QList<TranscribedWord> &incoming) {
    if (incoming.isEmpty())
        return;
    const auto byStart = [](const TranscribedWord &left, const TranscribedWord &right) {
        return left.start < right.start;
    };
    const qsizetype oldSize = words_.size();
    words_ += incoming.sliced(seamLength(words_, incoming));
    const auto added = words_.begin() + oldSize;
    std::stable_sort(added, words_.end(), byStart);
    // What was there is in order already, so only its end, at the seam, can mix with the new words.
    if (added != words_.end())
        std::inplace_merge(std::upper_bound(words_.begin(), added, *added, byStart), added,
                           words_.end(), byStart);
}

} // namespace lorvane
