#include "LorvaneApp/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

constexpr int answerMilliseconds = 2000;

const QString activationToken = u"activation-token"_s;

} // namespace

QVariantMap SingleInstance::platformData() {
    QVariantMap data;
    for (const auto &[variable, key] : {std::pair("DESKTOP_STARTUP_ID", u"desktop-startup-id"_s),
                                        std::pair("XDG_ACTIVATION_TOKEN", activationToken)})
        if (qEnvironmentVariableIsSet(variable))
            data.insert(key, qEnvironmentVariable(variable));
    return data;
}

SingleInstance::SingleInstance(const QVariantMap &platformData)
    : isFirst_(takeName(platformData)) {}

bool SingleInstance::takeName(const QVariantMap &platformData) {
    const QString service = u"net.lorvane.Lorvane"_s;
    const QString path = u"/net/lorvane/Lorvane"_s;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return true;
    // There before the name is, or the next start might call into the void.
    new ApplicationInterface(*this);
    bus.registerObject(path, this);
    if (bus.interface()->registerService(service) == QDBusConnectionInterface::ServiceRegistered)
        return true;

    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, u"org.freedesktop.Application"_s, u"Activate"_s);
    call << platformData;
    const QDBusMessage answer = bus.call(call, QDBus::Block, answerMilliseconds);
    if (answer.type() == QDBusMessage::ErrorMessage)
        qWarning("Lorvane runs already, but doesn't answer: %s", qPrintable(answer.errorMessage()));
    return false;
}

void ApplicationInterface::Activate(const QVariantMap &platformData) {
    // Qt spends it on the window that is activated next.
    if (const QString token = platformData.value(activationToken).toString(); !token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    Q_EMIT instance_.activated();
}

void ApplicationInterface::Open(const QStringList &, const QVariantMap &platformData) {
    Activate(platformData);
}

void ApplicationInterface::ActivateAction(const QString &, const QVariantList &,
                                          const QVariantMap &platformData) {
    Activate(platformData);
}

} // namespace lorvane
