#pragma once

#include <QDBusConnection>
#include <QDialog>
#include <QString>
#include <QVariantMap>

#include <chrono>

namespace lorvane {

/// Stands for a file dialog that the desktop's portal shows: nothing of it is on the screen, but it
/// keeps the program's own windows from the user meanwhile. For one question. Main thread only. The
/// interface is org.freedesktop.portal.FileChooser of xdg-desktop-portal.
class PortalDialog final : public QDialog {
    Q_OBJECT

public:
    enum class Outcome { cancelled = Rejected, chosen = Accepted, failed };

    explicit PortalDialog(QDBusConnection bus);

    /// Asks where to save a file. Returns when the user has answered, or when it is clear that the
    /// portal can't ask, which is so if it doesn't take the question within `limit`.
    Outcome ask(const QString &proposedFileName, std::chrono::milliseconds limit);

    const QString &chosenPath() const { return path_; }

private:
    Q_SLOT void takeResponse(uint code, const QVariantMap &results);

    QDBusConnection bus_;
    bool isAnswered_ = false;
    QString path_;
};

} // namespace lorvane
