#pragma once

#include "Platform/UserDefaults.h"

#include <QSettings>

namespace lorvane {

/// A small settings file. A value is on disk when `setBoolean` returns.
class QtUserDefaults final : public UserDefaults {
public:
    /// Where the values of the user are kept: lorvane/lorvane.conf in the user's configuration
    /// folder.
    static QString standardPath();

    explicit QtUserDefaults(const QString &path = standardPath());

    bool boolean(const QString &key) const override;
    void setBoolean(const QString &key, bool value) override;

private:
    QSettings settings_;
};

} // namespace lorvane
