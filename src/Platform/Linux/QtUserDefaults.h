#pragma once

#include "Platform/UserDefaults.h"

#include <QHash>
#include <QSettings>

#include <optional>

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
    QString readError() const override { return readError_; }

private:
    std::optional<QSettings> settings_; ///< absent when the file can't be read
    QString readError_;
    QHash<QString, bool> values_; ///< what was set in this run
};

} // namespace lorvane
