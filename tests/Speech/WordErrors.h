#pragma once

#include <QString>
#include <QStringList>

namespace lorvane {

/// The words of a text as one says them: lower case, without punctuation, numbers spelt out.
QStringList spokenWords(const QString &text);

/// The errors of a recognition against what was said.
struct WordErrors {
    int substitutions = 0;
    int insertions = 0;
    int deletions = 0;
    int wordCount = 0; ///< of what was said

    int errors() const { return substitutions + insertions + deletions; }
    double rate() const { return wordCount ? double(errors()) / wordCount : 0; }
    WordErrors &operator+=(const WordErrors &other);
};

/// The fewest changes that turn `said` into `heard`.
WordErrors wordErrors(const QStringList &said, const QStringList &heard);

} // namespace lorvane
