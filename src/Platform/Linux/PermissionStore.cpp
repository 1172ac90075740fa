#include "Platform/Linux/PermissionStore.h"

#include "Platform/Linux/ApplicationId.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
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

} // namespace

PermissionStore::Entry PermissionStore::read(const QString &table, const QString &id) {
    const QDBusMessage reply = call(QStringLiteral("Lookup"), {table, id});
    if (reply.type() != QDBusMessage::ReplyMessage)
        return entryOf(reply);
    const auto permissions =
        qdbus_cast<QMap<QString, QStringList>>(reply.arguments().value(0).value<QDBusArgument>());
    const QStringList own = permissions.value(applicationId);
    return own.contains(yes) ? Entry::yes : own.contains(no) ? Entry::no : Entry::missing;
}

PermissionStore::Entry PermissionStore::write(const QString &table, const QString &id,
                                              bool isAllowed) {
    const bool mayCreate = true;
    const QDBusMessage reply =
        call(QStringLiteral("SetPermission"),
             {table, mayCreate, id, applicationId, QStringList(isAllowed ? yes : no)});
    if (reply.type() != QDBusMessage::ReplyMessage)
        return entryOf(reply);
    return isAllowed ? Entry::yes : Entry::no;
}

QDBusMessage PermissionStore::call(const QString &method, const QVariantList &arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(name, path, name, method);
    message.setArguments(arguments);
    if (!pause_.hasExpired())
        return message.createErrorReply(QDBusError::Timeout, {});
    QDBusMessage reply = bus_.call(message, QDBus::Block, int(answerLimit.count()));
    if (QDBusError(reply).type() == QDBusError::NoReply)
        pause_.setRemainingTime(pauseAfterSilence);
    return reply;
}

} // namespace lorvane
