#include "LorvaneApp/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

constexpr int answerMilliseconds = 2000;

/// What a desktop gives a program that it starts, for its windows to be let to the front. Each is
/// an environment variable here and a key of the platform data there.
constexpr std::pair<const char *, const char *> tokens[] = {
    {"DESKTOP_STARTUP_ID", "desktop-startup-id"},
    {"XDG_ACTIVATION_TOKEN", "activation-token"},
};

} // namespace

SingleInstance::SingleInstance(QObject *parent) : QObject(parent), isFirst_(takeName()) {}

bool SingleInstance::takeName() {
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

    QVariantMap platformData;
    for (const auto &[variable, key] : tokens)
        if (qEnvironmentVariableIsSet(variable))
            platformData.insert(QString::fromLatin1(key), qEnvironmentVariable(variable));
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, u"org.freedesktop.Application"_s, u"Activate"_s);
    call << platformData;
    const QDBusMessage answer = bus.call(call, QDBus::Block, answerMilliseconds);
    if (answer.type() == QDBusMessage::ErrorMessage)
        qWarning("Lorvane runs already, but doesn't answer: %s", qPrintable(answer.errorMessage()));
    return false;
}

void ApplicationInterface::Activate(const QVariantMap &platformData) {
    for (const auto &[variable, key] : tokens)
        if (const QString token = platformData.value(QString::fromLatin1(key)).toString();
            !token.isEmpty())
            qputenv(variable, token.toUtf8());
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
