#pragma once

#include "Platform/Accessibility.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace lorvane {

/// The states of an element that matter here, by their bits in AT-SPI's StateSet.
enum class AtSpiState {
    active = 1,
    defunct = 6,
    editable = 7,
    focused = 12,
    showing = 25,
    stale = 27,
    managesDescendants = 31,
};

/// What an element says of itself.
struct AtSpiStates {
    quint64 bits = 0;
    bool has(AtSpiState state) const { return bits >> static_cast<int>(state) & 1; }
};

/// The accessibility bus, on a connection of its own: finds it, finds it again when it was started
/// anew, and asks the applications on it, with a time limit for each question. Main thread only.
class AtSpiBus final : public QObject {
    Q_OBJECT

public:
    enum class Outcome { answered, gone, silent };
    struct StatesAnswer {
        Outcome outcome = Outcome::silent;
        AtSpiStates states;
    };

    AtSpiBus();
    ~AtSpiBus() override;

    bool isConnected() const { return connection_ && connection_->isConnected(); }
    /// Looks for the bus, unless it is there. Doesn't wait: `connected` tells of success.
    void open();

    /// The process of a name on the bus, 0 if there is none. Asks the bus only, not the
    /// application.
    Async<qint64> processId(QString name, QDeadlineTimer deadline);
    Async<StatesAnswer> states(AccessibleElement element, QDeadlineTimer deadline);
    Async<bool> grabFocus(AccessibleElement element, QDeadlineTimer deadline);

    /// The same for whoever goes on meanwhile; nothing is called if there is no answer.
    void askForStates(const AccessibleElement &element, std::function<void(AtSpiStates)> answered);
    void askForChildren(const AccessibleElement &element,
                        std::function<void(const QList<AccessibleElement> &)> answered);

    /// Has the applications report an event such as "object:state-changed:focused", and delivers
    /// the signals that tell of it to a slot that takes a QDBusMessage.
    void subscribe(const QString &event, const QString &interface, const QString &member,
                   const QStringList &arguments, QObject *receiver, const char *slot);
    void watch(const QString &name) { watcher_.addWatchedService(name); }

    /// The elements that stand for the whole desktop and for an application.
    static AccessibleElement desktop();
    static AccessibleElement application(const QString &name);

Q_SIGNALS:
    void connected();
    void disconnected();
    /// An application has come to the bus.
    void joined(const QString &name);
    /// A name that is watched has left it.
    void left(const QString &name);

private:
    Async<QDBusMessage> ask(QDBusMessage question, QDeadlineTimer deadline);
    void ask(const QDBusMessage &question, std::function<void(const QDBusMessage &)> answered);
    void connectTo(const QString &address);
    void follow(const QString &connection);
    void close();
    Q_SLOT void handleDisconnection();
    Q_SLOT void handleChildrenChange(const QDBusMessage &event);

    std::optional<QDBusConnection> connection_;
    QDBusServiceWatcher watcher_;         ///< of names on the accessibility bus
    QDBusServiceWatcher launcherWatcher_; ///< of the one who starts that bus
    bool isOpening_ = false;
};

} // namespace lorvane
