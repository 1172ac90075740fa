#pragma once

#include <QList>

#include <algorithm>

namespace lorvane {

/// How one list becomes another: at `first`, `removed` items go and `inserted` others come. What
/// stands before and behind stays.
struct ListChange {
    qsizetype first = 0;
    qsizetype removed = 0;
    qsizetype inserted = 0;

    template <class Item, class IsSame>
    static ListChange between(const QList<Item> &before, const QList<Item> &after, IsSame isSame) {
        const auto [head, newHead] =
            std::mismatch(before.cbegin(), before.cend(), after.cbegin(), after.cend(), isSame);
        const auto [tail, newTail] =
            std::mismatch(before.crbegin(), std::make_reverse_iterator(head), after.crbegin(),
                          std::make_reverse_iterator(newHead), isSame);
        return {head - before.cbegin(), tail.base() - head, newTail.base() - newHead};
    }
};

} // namespace lorvane
