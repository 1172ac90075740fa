#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QString>

namespace lorvane {

/// What the desktop's permission store holds for this application. Each call ends within a fifth of
/// a second; a store that hangs is left alone for a while. Main thread only.
/// The interface is org.freedesktop.impl.portal.PermissionStore of xdg-desktop-portal.
class PermissionStore {
public:
    enum class Entry { missing, no, yes, forbidden, unreachable };

    explicit PermissionStore(QDBusConnection bus) : bus_(std::move(bus)) {}

    Entry read(const QString &table, const QString &id);
    /// Gives what the store holds then: what was written, or why it couldn't be.
    Entry write(const QString &table, const QString &id, bool isAllowed);

private:
    QDBusMessage call(const QString &method, const QVariantList &arguments);

    QDBusConnection bus_;
    QDeadlineTimer pause_;
};

} // namespace lorvane
