#include "Platform/Linux/PermissionStore.h"

#include "Platform/Linux/ApplicationId.h"
#include "Platform/Linux/PendingAnswer.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QEvent>
#include <QMap>

#include <chrono>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds answerLimit = 200ms;
constexpr std::chrono::milliseconds pauseAfterSilence = 5s;

const QString name = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
const QString path = QStringLiteral("/org/freedesktop/impl/portal/PermissionStore");
const QString yes = QStringLiteral("yes");
const QString no = QStringLiteral("no");

/// What an error says of the store.
PermissionStore::Entry entryOf(const QDBusMessage &error) {
    using Entry = PermissionStore::Entry;
    if (error.errorName() == QStringLiteral("org.freedesktop.portal.Error.NotFound"))
        return Entry::missing;
    switch (QDBusError(error).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
    case QDBusError::NoReply:
    case QDBusError::TimedOut:
    case QDBusError::Timeout:
    case QDBusError::Other: // a store that can't be started has errors of many names
        return Entry::unreachable;
    default: return Entry::forbidden;
    }
}

PermissionStore::Entry entryIn(const QVariant &permissions) {
    using Entry = PermissionStore::Entry;
    const auto all = qdbus_cast<QMap<QString, QStringList>>(permissions.value<QDBusArgument>());
    const QStringList own = all.value(applicationId);
    return own.contains(yes) ? Entry::yes : own.contains(no) ? Entry::no : Entry::missing;
}

} // namespace

PermissionStore::PermissionStore(QDBusConnection bus)
    : bus_(std::move(bus)), watcher_(name, bus_, QDBusServiceWatcher::WatchForRegistration) {
    bus_.connect(name, path, name, QStringLiteral("Changed"), this,
                 SLOT(handleChange(QDBusMessage)));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &PermissionStore::askAgain);
}

void PermissionStore::follow(const QString &table, const QString &id) {
    const auto [place, isNew] = followed_.try_emplace({table, id});
    if (isNew)
        ask(place->first, place->second);
}

PermissionStore::Entry PermissionStore::read(const QString &table, const QString &id) {
    follow(table, id);
    // What has been told until now and waits for its turn.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    Followed &followed = followed_.at({table, id});
    if (followed.question && !followed.entry)
        followed.question->waitForFinished();
    if (followed.question && followed.question->isFinished())
        takeAnswer(followed);
    else if (!followed.question && followed.entry == Entry::unreachable && pause_.hasExpired())
        ask({table, id}, followed);
    return followed.entry.value_or(Entry::unreachable);
}

void PermissionStore::ask(const Key &key, Followed &followed) {
    followed.question = call(QStringLiteral("Lookup"), {key.first, key.second});
}

void PermissionStore::takeAnswer(Followed &followed) {
    const QDBusMessage reply = std::exchange(followed.question, std::nullopt)->reply();
    if (reply.type() == QDBusMessage::ReplyMessage) {
        followed.entry = entryIn(reply.arguments().value(0));
        return;
    }
    followed.entry = entryOf(reply);
    if (QDBusError(reply).type() == QDBusError::NoReply)
        pause_.setRemainingTime(pauseAfterSilence);
}

/// A store that has just come may know other answers than the one before.
void PermissionStore::askAgain() {
    for (auto &[key, followed] : followed_) {
        if (!followed.question)
            ask(key, followed);
    }
}

/// An answer that is still on its way can't know more.
void PermissionStore::handleChange(const QDBusMessage &change) {
    const QVariantList arguments = change.arguments();
    const auto place =
        followed_.find({arguments.value(0).toString(), arguments.value(1).toString()});
    if (place == followed_.end() || change.signature() != u"ssbva{sas}")
        return;
    const bool isDeleted = arguments.at(2).toBool();
    place->second = {isDeleted ? Entry::missing : entryIn(arguments.at(4)), std::nullopt};
}

Async<PermissionStore::Entry> PermissionStore::write(QString table, QString id, bool isAllowed) {
    const bool mayCreate = true;
    const QVariantList arguments{table, mayCreate, id, applicationId,
                                 QStringList(isAllowed ? yes : no)};
    const QDBusPendingCall question = call(QStringLiteral("SetPermission"), arguments);
    const QDBusMessage reply = co_await answerTo(question, this);
    if (reply.type() != QDBusMessage::ReplyMessage)
        co_return entryOf(reply);
    const Entry entry = isAllowed ? Entry::yes : Entry::no;
    followed_[{table, id}] = {entry, std::nullopt};
    co_return entry;
}

QDBusPendingCall PermissionStore::call(const QString &method, const QVariantList &arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(name, path, name, method);
    message.setArguments(arguments);
    return bus_.asyncCall(message, int(answerLimit.count()));
}

} // namespace lorvane
