#pragma once

#include "Platform/Task.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <map>
#include <optional>
#include <utility>

namespace lorvane {

/// What the desktop's permission store holds for this application. The store tells of each change,
/// so that a read finds the answer here: it waits, for a fifth of a second at most, only where the
/// store has never said anything yet. A store that hangs is left alone for a while. Main thread
/// only. The interface is org.freedesktop.impl.portal.PermissionStore of xdg-desktop-portal.
class PermissionStore : public QObject {
    Q_OBJECT

public:
    enum class Entry { missing, no, yes, forbidden, unreachable };

    explicit PermissionStore(QDBusConnection bus);

    /// Asks for an entry ahead of its first read, and doesn't wait.
    void follow(const QString &table, const QString &id);
    Entry read(const QString &table, const QString &id);
    /// Gives what the store holds then: what was written, or why it couldn't be.
    Async<Entry> write(QString table, QString id, bool isAllowed);

private:
    using Key = std::pair<QString, QString>; ///< a table and an entry's name
    struct Followed {
        std::optional<Entry> entry;
        std::optional<QDBusPendingCall> question;
    };

    void ask(const Key &key, Followed &followed);
    void takeAnswer(Followed &followed);
    void askAgain();
    QDBusPendingCall call(const QString &method, const QVariantList &arguments);
    Q_SLOT void handleChange(const QDBusMessage &change);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::map<Key, Followed> followed_;
    QDeadlineTimer pause_;
};

} // namespace lorvane
