#include "Core/TranscriptAssembly.h"

#include "Core/RegularExpression.h"
#include "Core/Text.h"

namespace lorvane {

bool TranscribedWord::operator==(const TranscribedWord &other) const {
    return Text::equalsCanonically(text, other.text) && start == other.start &&
           duration == other.duration;
}

void TranscriptAssembly::replaceSnapshot(const QList<TranscribedWord> &newWords) {
    if (!newWords.isEmpty())
        words_ = newWords;
}

void TranscriptAssembly::update(const QList<TranscribedWord> &newWords) {
    if (newWords.isEmpty())
        return;
    // A word that comes back with a slightly earlier start replaces its older self.
    constexpr double slack = 0.02;
    const double cut = newWords.first().start - slack;
    words_.removeIf([cut](const TranscribedWord &word) { return word.start >= cut; });
    words_ += newWords;
}

QString TranscriptAssembly::render(const QList<TranscribedWord> &words) {
    QString joined;
    for (const TranscribedWord &word : words) {
        if (&word != &words.first())
            joined += u' ';
        joined += word.text;
    }
    return RegularExpression(QStringLiteral("\\s+([,.;:!?])"))
        .replacingMatches(joined, QStringLiteral("$1"));
}

} // namespace lorvane
