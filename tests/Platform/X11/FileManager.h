#pragma once

#include <QObject>
#include <QStringList>

namespace lorvane {

/// A file manager that writes down what it is asked to show.
class FileManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;
    Q_SCRIPTABLE void ShowItems(const QStringList &addresses, const QString &) {
        shown += addresses;
    }
};

} // namespace lorvane
