#pragma once

#include <QString>

namespace lorvane {

/// The general pasteboard. Main thread only.
class Pasteboard {
public:
    Pasteboard() = default;
    Pasteboard(const Pasteboard &) = delete;
    Pasteboard &operator=(const Pasteboard &) = delete;
    virtual ~Pasteboard() = default;

    /// Replaces the contents by one plain string.
    virtual void setText(const QString &text) = 0;
};

} // namespace lorvane
