#pragma once

#include <QString>

namespace lorvane {

/// A small key-value store, kept apart from the library file. Main thread only.
class UserDefaults {
public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;
    virtual ~UserDefaults() = default;

    /// False when the key is missing.
    virtual bool boolean(const QString &key) const = 0;
    virtual void setBoolean(const QString &key, bool value) = 0;

    /// Why what is stored can't be read, in words fit to show; null when it can. Every key is
    /// missing then, and what is set holds for this run alone: what is stored stays as it is.
    virtual QString readError() const = 0;
};

} // namespace lorvane
