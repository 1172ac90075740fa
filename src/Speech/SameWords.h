#pragma once

#include <QStringList>

#include <functional>
#include <vector>

namespace lorvane {

/// Whether two places, of the words and of the others, hold the same word.
using IsSameWord = std::function<bool(qsizetype word, qsizetype other)>;

/// For each of `count` words the place of the same one among `otherCount` others, or -1: the
/// longest common subsequence.
std::vector<int> sameWords(qsizetype count, qsizetype otherCount, const IsSameWord &isSame);

/// The same for words that are the same to the letter.
std::vector<int> sameWords(const QStringList &words, const QStringList &others);

} // namespace lorvane
