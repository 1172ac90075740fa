#include "Speech/SameWords.h"

#include <algorithm>

namespace lorvane {

std::vector<int> sameWords(const QStringList &words, const QStringList &others) {
    // length[i, j]: of the subsequence that words from i and others from j on have in common.
    const auto columns = static_cast<std::size_t>(others.size()) + 1;
    std::vector<int> lengths((static_cast<std::size_t>(words.size()) + 1) * columns);
    const auto length = [&](qsizetype i, qsizetype j) -> int & {
        return lengths[static_cast<std::size_t>(i) * columns + static_cast<std::size_t>(j)];
    };
    for (qsizetype i = words.size(); i-- > 0;) {
        for (qsizetype j = others.size(); j-- > 0;) {
            length(i, j) = words[i] == others[j] ? length(i + 1, j + 1) + 1
                                                 : std::max(length(i + 1, j), length(i, j + 1));
        }
    }
    std::vector<int> same(static_cast<std::size_t>(words.size()), -1);
    for (qsizetype i = 0, j = 0; i < words.size() && j < others.size();) {
        if (words[i] == others[j])
            same[static_cast<std::size_t>(i++)] = static_cast<int>(j++);
        else if (length(i + 1, j) >= length(i, j + 1))
            ++i;
        else
            ++j;
    }
    return same;
}

} // namespace lorvane
