#include "Platform/Linux/QtUserDefaults.h"

#include "Core/FileError.h"
#include "Core/WholeFile.h"

#include <QStandardPaths>

namespace lorvane {

QString QtUserDefaults::standardPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/lorvane/lorvane.conf");
}

QtUserDefaults::QtUserDefaults(const QString &path) {
    try {
        readFile(path); // QSettings takes much of what can't be read for an empty file
    } catch (const FileError &error) {
        readError_ = error.localizedDescription();
        return;
    }
    settings_.emplace(path, QSettings::IniFormat);
    settings_->allKeys(); // a section is looked at when it is needed, and only then found wrong
    if (settings_->status() == QSettings::NoError)
        return;
    readError_ = QStringLiteral("“%1” is not a settings file.").arg(path);
    settings_.reset();
}

bool QtUserDefaults::boolean(const QString &key) const {
    if (const auto value = values_.constFind(key); value != values_.cend())
        return *value;
    return settings_ && settings_->value(key, false).toBool();
}

void QtUserDefaults::setBoolean(const QString &key, bool value) {
    values_.insert(key, value);
    if (!settings_)
        return;
    settings_->setValue(key, value);
    settings_->sync();
}

} // namespace lorvane
