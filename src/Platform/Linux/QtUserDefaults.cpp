#include "Platform/Linux/QtUserDefaults.h"

#include <QStandardPaths>

namespace lorvane {

QString QtUserDefaults::standardPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/lorvane/lorvane.conf");
}

QtUserDefaults::QtUserDefaults(const QString &path) : settings_(path, QSettings::IniFormat) {}

bool QtUserDefaults::boolean(const QString &key) const {
    return settings_.value(key, false).toBool();
}

void QtUserDefaults::setBoolean(const QString &key, bool value) {
    settings_.setValue(key, value);
    settings_.sync();
}

} // namespace lorvane
