#include "Views/Kit/Contrast.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <array>

namespace lorvane {

namespace {

using namespace Qt::StringLiterals;

const auto service = u"org.freedesktop.portal.Desktop"_s;
const auto path = u"/org/freedesktop/portal/desktop"_s;
const auto interface = u"org.freedesktop.portal.Settings"_s;

struct Setting {
    QString space;
    QString key;
};

/// The standard's, and GNOME's own, which older portals have instead.
const std::array<Setting, 2> &settings() {
    static const std::array<Setting, 2> known{
        {{u"org.freedesktop.appearance"_s, u"contrast"_s},
         {u"org.gnome.desktop.a11y.interface"_s, u"high-contrast"_s}}};
    return known;
}

} // namespace

Contrast::Contrast(QObject *parent) : QObject(parent) {
    QDBusConnection::sessionBus().connect(service, path, interface, u"SettingChanged"_s, this,
                                          SLOT(take(QString, QString, QDBusVariant)));
    for (const Setting &setting : settings())
        ask(setting.space, setting.key);
}

void Contrast::ask(const QString &space, const QString &key) {
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    question.setArguments({space, key});
    // A desktop that has a portal has it running.
    question.setAutoStartService(false);
    auto *watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, space, key] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid())
            take(space, key, reply.value());
        watcher->deleteLater();
    });
}

void Contrast::take(const QString &space, const QString &key, const QDBusVariant &value) {
    const bool isKnown =
        std::any_of(settings().begin(), settings().end(), [&](const Setting &setting) {
            return setting.space == space && setting.key == key;
        });
    if (!isKnown)
        return;
    // `Read` wraps the value once more than the signal.
    QVariant wish = value.variant();
    if (wish.canConvert<QDBusVariant>())
        wish = wish.value<QDBusVariant>().variant();
    wishes_[key] = wish.toUInt() == 1;
    const bool isHigh =
        std::any_of(wishes_.cbegin(), wishes_.cend(), [](bool wished) { return wished; });
    if (isHigh == std::exchange(isHigh_, isHigh))
        return;
    Q_EMIT isHighChanged();
}

} // namespace lorvane
