#pragma once

#include <QStringList>

#include <vector>

namespace lorvane {

/// For each of `words` the place of the same one in `others`, or -1: the longest common
/// subsequence.
std::vector<int> sameWords(const QStringList &words, const QStringList &others);

} // namespace lorvane
