#include "Platform/Linux/PortalDialog.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <QUuid>
#include <QWindow>

#include <utility>

namespace lorvane {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString fileChooser = QStringLiteral("org.freedesktop.portal.FileChooser");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

/// The window that asks, for the portal to put the dialog above it.
QString parentWindow() {
    const QWindow *const window = QGuiApplication::focusWindow();
    if (!window || QGuiApplication::platformName() != QStringLiteral("xcb"))
        return {};
    return QStringLiteral("x11:%1").arg(window->winId(), 0, 16);
}

/// Where the portal tells of the answer, told beforehand so that it can't be missed.
QString requestPath(const QString &sender, const QString &token) {
    return path + QStringLiteral("/request/") + sender.mid(1).replace(u'.', u'_') + u'/' + token;
}

} // namespace

PortalDialog::PortalDialog(QDBusConnection bus) : bus_(std::move(bus)) {
    setAttribute(Qt::WA_DontShowOnScreen);
}

PortalDialog::Outcome PortalDialog::ask(const QString &proposedFileName,
                                        std::chrono::milliseconds limit) {
    const int failed = int(Outcome::failed);
    const QString token = QStringLiteral("lorvane_") + QUuid::createUuid().toString(QUuid::Id128);
    const QString request = requestPath(bus_.baseService(), token);
    bus_.connect(service, request, requestInterface, QStringLiteral("Response"), this,
                 SLOT(takeResponse(uint, QVariantMap)));
    const QDBusServiceWatcher life(service, bus_, QDBusServiceWatcher::WatchForUnregistration);
    connect(&life, &QDBusServiceWatcher::serviceUnregistered, this, [&] { done(failed); });

    // The folder is bytes that end in a zero, for it needn't be Unicode.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QVariantMap options{
        {QStringLiteral("handle_token"), token},
        {QStringLiteral("current_name"), proposedFileName},
        {QStringLiteral("current_folder"), QFile::encodeName(folder).append('\0')}};
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, fileChooser, QStringLiteral("SaveFile"));
    question.setArguments({parentWindow(), QStringLiteral("Save As"), options});
    const QDBusPendingCallWatcher taken(bus_.asyncCall(question, int(limit.count())));
    connect(&taken, &QDBusPendingCallWatcher::finished, this, [&] {
        if (taken.isError())
            done(failed);
    });

    const auto outcome = Outcome(exec());
    // Nobody waits for the answer any more.
    if (!isAnswered_)
        bus_.send(QDBusMessage::createMethodCall(service, request, requestInterface,
                                                 QStringLiteral("Close")));
    return outcome;
}

void PortalDialog::takeResponse(uint code, const QVariantMap &results) {
    isAnswered_ = true;
    // 1 stands for Cancel; with 2 GTK's dialog tells of Escape and of its frame's button.
    if (code != 0) {
        done(int(Outcome::cancelled));
        return;
    }
    const QStringList addresses = results.value(QStringLiteral("uris")).toStringList();
    if (!addresses.isEmpty())
        path_ = QUrl(addresses.first()).toLocalFile();
    done(int(path_.isEmpty() ? Outcome::failed : Outcome::chosen));
}

} // namespace lorvane
