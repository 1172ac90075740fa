#include "Platform/Linux/FocusMemory.h"

#include <algorithm>

namespace lorvane {

void FocusMemory::gained(const QString &element) {
    tellsOfLoss_ = true;
    add(element);
}

void FocusMemory::gainedInOldWay(const QString &element) {
    if (!tellsOfLoss_)
        add(element);
}

void FocusMemory::add(const QString &element) {
    constexpr qsizetype most = 4;
    hasTold_ = true;
    candidates_.removeIf([&](const Candidate &candidate) {
        return candidate.hasLost || candidate.element == element;
    });
    candidates_.prepend({element, false});
    if (candidates_.size() > most)
        candidates_.removeLast();
}

void FocusMemory::lost(const QString &element) {
    tellsOfLoss_ = true;
    hasTold_ = true;
    for (Candidate &candidate : candidates_) {
        if (candidate.element == element)
            candidate.hasLost = true;
    }
}

void FocusMemory::denied(const QString &element) {
    const auto holds = [](const Candidate &candidate) { return !candidate.hasLost; };
    // The only one that is left isn't given up, nor is one that has lost it in the meantime.
    if (std::count_if(candidates_.cbegin(), candidates_.cend(), holds) > 1) {
        candidates_.removeIf([&](const Candidate &candidate) {
            return holds(candidate) && candidate.element == element;
        });
    }
}

void FocusMemory::windowActivated(const QString &window) { activeWindow_ = window; }

void FocusMemory::windowDeactivated(const QString &window) {
    // The next window may be active already.
    if (activeWindow_ == window)
        activeWindow_.clear();
}

void FocusMemory::found(const QString &element) {
    if (!hasTold_)
        candidates_.append({element, false});
}

void FocusMemory::foundActiveWindow(const QString &window) {
    if (!hasTold_)
        activeWindow_ = window;
}

void FocusMemory::forget(const QString &element) {
    candidates_.removeIf([&](const Candidate &candidate) { return candidate.element == element; });
}

QStringList FocusMemory::candidates() const {
    QStringList elements;
    for (const Candidate &candidate : candidates_)
        elements.append(candidate.element);
    return elements;
}

} // namespace lorvane
