#include "Speech/SameWords.h"

#include <algorithm>

namespace lorvane {

std::vector<int> sameWords(qsizetype count, qsizetype otherCount, const IsSameWord &isSame) {
    // length[i, j]: of the subsequence that words from i and others from j on have in common.
    const auto columns = static_cast<std::size_t>(otherCount) + 1;
    std::vector<int> lengths((static_cast<std::size_t>(count) + 1) * columns);
    const auto length = [&](qsizetype i, qsizetype j) -> int & {
        return lengths[static_cast<std::size_t>(i) * columns + static_cast<std::size_t>(j)];
    };
    for (qsizetype i = count; i-- > 0;) {
        for (qsizetype j = otherCount; j-- > 0;) {
            length(i, j) = isSame(i, j) ? length(i + 1, j + 1) + 1
                                        : std::max(length(i + 1, j), length(i, j + 1));
        }
    }
    std::vector<int> same(static_cast<std::size_t>(count), -1);
    for (qsizetype i = 0, j = 0; i < count && j < otherCount;) {
        if (isSame(i, j))
            same[static_cast<std::size_t>(i++)] = static_cast<int>(j++);
        else if (length(i + 1, j) >= length(i, j + 1))
            ++i;
        else
            ++j;
    }
    return same;
}

std::vector<int> sameWords(const QStringList &words, const QStringList &others) {
    return sameWords(words.size(), others.size(),
                     [&](qsizetype word, qsizetype other) { return words[word] == others[other]; });
}

} // namespace lorvane
