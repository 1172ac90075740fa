#include "Platform/Linux/AtSpiBus.h"

#include "Platform/Linux/PendingAnswer.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPointer>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <utility>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto startLimit = 5s; // the bus may have to be started first
constexpr auto searchLimit = 1s;

const auto launcherName = QStringLiteral("org.a11y.Bus");
const auto registryName = QStringLiteral("org.a11y.atspi.Registry");
const auto rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");

QDBusMessage question(const AccessibleElement &element, const QString &interface,
                      const QString &member) {
    return QDBusMessage::createMethodCall(element.bus, element.path,
                                          QStringLiteral("org.a11y.atspi.") + interface, member);
}

QDBusMessage statesQuestion(const AccessibleElement &element) {
    return question(element, QStringLiteral("Accessible"), QStringLiteral("GetState"));
}

std::optional<AtSpiStates> statesIn(const QDBusMessage &answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != u"au")
        return std::nullopt;
    const auto words = qdbus_cast<QList<uint>>(answer.arguments().constFirst());
    AtSpiStates states;
    for (qsizetype i = 0; i < std::min<qsizetype>(words.size(), 2); ++i)
        states.bits |= static_cast<quint64>(words[i]) << (32 * i);
    return states;
}

AccessibleElement elementIn(const QDBusArgument &argument) {
    AccessibleElement element;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> element.bus >> path;
    argument.endStructure();
    element.path = path.path();
    return element;
}

QList<AccessibleElement> elementsIn(const QDBusMessage &answer) {
    QList<AccessibleElement> elements;
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != u"a(so)")
        return elements;
    const auto argument = answer.arguments().constFirst().value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd())
        elements.append(elementIn(argument));
    argument.endArray();
    return elements;
}

bool isSilence(const QDBusMessage &answer) {
    switch (QDBusError(answer).type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected: return true;
    default: return false;
    }
}

int milliseconds(const QDeadlineTimer &deadline) {
    // QtDBus would take 0 and less for its own limit of 25 seconds.
    return static_cast<int>(std::max<qint64>(deadline.remainingTime(), 1));
}

} // namespace

AtSpiBus::AtSpiBus() {
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, &AtSpiBus::left);
    launcherWatcher_.setConnection(QDBusConnection::sessionBus());
    launcherWatcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    launcherWatcher_.addWatchedService(launcherName);
    connect(&launcherWatcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { open(); });
}

AtSpiBus::~AtSpiBus() { close(); }

void AtSpiBus::open() {
    if (isConnected() || std::exchange(isOpening_, true))
        return;
    if (connection_)
        handleDisconnection();
    const auto call = QDBusMessage::createMethodCall(launcherName, QStringLiteral("/org/a11y/bus"),
                                                     launcherName, QStringLiteral("GetAddress"));
    const auto pending = QDBusConnection::sessionBus().asyncCall(
        call, std::chrono::milliseconds(startLimit).count());
    auto *const watcher = new QDBusPendingCallWatcher(pending, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage answer = watcher->reply();
        if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == u"s")
            connectTo(answer.arguments().constFirst().toString());
        else
            isOpening_ = false;
    });
}

/// The bus has to answer before the connection is there: no wait for the main thread.
void AtSpiBus::connectTo(const QString &address) {
    static quint64 number = 0;
    const auto name = QStringLiteral("accessibility-%1").arg(++number);
    const auto made = [self = QPointer(this), name] {
        if (self)
            self->follow(name);
        else
            QDBusConnection::disconnectFromBus(name);
    };
    QThreadPool::globalInstance()->start([address, name, made] {
        QDBusConnection::connectToBus(address, name);
        if (qApp)
            QMetaObject::invokeMethod(qApp, made, Qt::QueuedConnection);
    });
}

void AtSpiBus::follow(const QString &connection) {
    isOpening_ = false;
    connection_ = QDBusConnection(connection);
    if (!connection_->isConnected()) {
        close();
        return;
    }
    connection_->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"),
                         QStringLiteral("Disconnected"), this, SLOT(handleDisconnection()));
    connection_->connect(registryName, rootPath, QStringLiteral("org.a11y.atspi.Event.Object"),
                         QStringLiteral("ChildrenChanged"), this,
                         SLOT(handleChildrenChange(QDBusMessage)));
    watcher_.setConnection(*connection_);
    Q_EMIT connected();
}

void AtSpiBus::close() {
    if (!connection_)
        return;
    const QString name = connection_->name();
    watcher_.setWatchedServices({});
    connection_.reset();
    QDBusConnection::disconnectFromBus(name);
}

void AtSpiBus::handleDisconnection() {
    close();
    Q_EMIT disconnected();
}

void AtSpiBus::handleChildrenChange(const QDBusMessage &event) {
    const auto child = event.arguments().value(3).value<QDBusVariant>().variant();
    if (event.arguments().value(0).toString() != u"add" || !child.canConvert<QDBusArgument>())
        return;
    const auto argument = child.value<QDBusArgument>();
    if (argument.currentSignature() == u"(so)")
        Q_EMIT joined(elementIn(argument).bus);
}

void AtSpiBus::subscribe(const QString &event, const QString &interface, const QString &member,
                         const QStringList &arguments, QObject *receiver, const char *slot) {
    if (!connection_)
        return;
    connection_->connect(QString(), QString(), QStringLiteral("org.a11y.atspi.Event.") + interface,
                         member, arguments, QString(), receiver, slot);
    auto call = question({registryName, QStringLiteral("/org/a11y/atspi/registry")},
                         QStringLiteral("Registry"), QStringLiteral("RegisterEvent"));
    call << event << QStringList() << QString();
    connection_->asyncCall(call);
}

Async<QDBusMessage> AtSpiBus::ask(QDBusMessage question, QDeadlineTimer deadline) {
    if (!isConnected())
        co_return QDBusMessage::createError(QDBusError::Disconnected, QString());
    const QDBusPendingCall call = connection_->asyncCall(question, milliseconds(deadline));
    const QDBusMessage answer = co_await answerTo(call, this);
    co_return answer;
}

void AtSpiBus::ask(const QDBusMessage &question,
                   std::function<void(const QDBusMessage &)> answered) {
    if (!isConnected())
        return;
    const auto pending =
        connection_->asyncCall(question, std::chrono::milliseconds(searchLimit).count());
    auto *const watcher = new QDBusPendingCallWatcher(pending, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, answered = std::move(answered)] {
                watcher->deleteLater();
                answered(watcher->reply());
            });
}

Async<qint64> AtSpiBus::processId(QString name, QDeadlineTimer deadline) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixProcessID"));
    call << name;
    const QDBusMessage answer = co_await ask(call, deadline);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != u"u")
        co_return 0;
    co_return answer.arguments().constFirst().toUInt();
}

Async<AtSpiBus::StatesAnswer> AtSpiBus::states(AccessibleElement element, QDeadlineTimer deadline) {
    const QDBusMessage asked = statesQuestion(element);
    const QDBusMessage answer = co_await ask(asked, deadline);
    const auto states = statesIn(answer);
    if (!states)
        co_return StatesAnswer{isSilence(answer) ? Outcome::silent : Outcome::gone, {}};
    if (states->has(AtSpiState::defunct) || states->has(AtSpiState::stale))
        co_return StatesAnswer{Outcome::gone, {}};
    co_return StatesAnswer{Outcome::answered, *states};
}

Async<bool> AtSpiBus::grabFocus(AccessibleElement element, QDeadlineTimer deadline) {
    const QDBusMessage asked =
        question(element, QStringLiteral("Component"), QStringLiteral("GrabFocus"));
    const QDBusMessage answer = co_await ask(asked, deadline);
    co_return answer.type() == QDBusMessage::ReplyMessage &&answer.signature() == u"b" &&
        answer.arguments().constFirst().toBool();
}

void AtSpiBus::askForStates(const AccessibleElement &element,
                            std::function<void(AtSpiStates)> answered) {
    ask(statesQuestion(element), [answered = std::move(answered)](const QDBusMessage &answer) {
        if (const auto states = statesIn(answer))
            answered(*states);
    });
}

void AtSpiBus::askForChildren(const AccessibleElement &element,
                              std::function<void(const QList<AccessibleElement> &)> answered) {
    ask(question(element, QStringLiteral("Accessible"), QStringLiteral("GetChildren")),
        [answered = std::move(answered)](const QDBusMessage &answer) {
            answered(elementsIn(answer));
        });
}

AccessibleElement AtSpiBus::desktop() { return {registryName, rootPath}; }

AccessibleElement AtSpiBus::application(const QString &name) { return {name, rootPath}; }

} // namespace lorvane
