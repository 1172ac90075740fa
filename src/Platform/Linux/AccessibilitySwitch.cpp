#include "Platform/Linux/AccessibilitySwitch.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QEvent>
#include <QVariantMap>

#include <utility>

namespace lorvane {
namespace {

constexpr int launcherLimit = 200; // in milliseconds

const QString launcher = QStringLiteral("org.a11y.Bus");
const QString launcherPath = QStringLiteral("/org/a11y/bus");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString status = QStringLiteral("org.a11y.Status");
const QString isEnabled = QStringLiteral("IsEnabled");

QDBusMessage propertyCall(const QString &method, const QVariantList &arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(launcher, launcherPath, properties, method);
    message.setArguments(QVariantList{status, isEnabled} + arguments);
    return message;
}

} // namespace

AccessibilitySwitch::AccessibilitySwitch(QDBusConnection sessionBus)
    : bus_(std::move(sessionBus)), watcher_(launcher, bus_) {
    bus_.connect(launcher, launcherPath, properties, QStringLiteral("PropertiesChanged"), {status},
                 QString(), this, SLOT(handleChange(QDBusMessage)));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &AccessibilitySwitch::ask);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        isOn_ = false;
        question_.reset();
    });
    ask();
}

bool AccessibilitySwitch::isOn() {
    // What has been told until now and waits for its turn.
    QCoreApplication::sendPostedEvents(&watcher_, QEvent::MetaCall);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    if (question_ && !isOn_)
        question_->waitForFinished();
    if (question_ && question_->isFinished()) {
        const QDBusMessage reply = std::exchange(question_, std::nullopt)->reply();
        isOn_ = reply.type() == QDBusMessage::ReplyMessage &&
                reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
    }
    return isOn_.value_or(false);
}

void AccessibilitySwitch::turnOn() {
    const QVariant enabled = QVariant::fromValue(QDBusVariant(true));
    bus_.asyncCall(propertyCall(QStringLiteral("Set"), {enabled}));
}

void AccessibilitySwitch::ask() {
    QDBusMessage question = propertyCall(QStringLiteral("Get"), {});
    question.setAutoStartService(false);
    question_ = bus_.asyncCall(question, launcherLimit);
}

/// An answer that is still on its way can't know more.
void AccessibilitySwitch::handleChange(const QDBusMessage &change) {
    if (change.signature() != u"sa{sv}as")
        return;
    const auto values = qdbus_cast<QVariantMap>(change.arguments().at(1));
    if (const auto value = values.constFind(isEnabled); value != values.constEnd()) {
        isOn_ = value->toBool();
        question_.reset();
    }
}

} // namespace lorvane
