// Lorvane's shortcut and paste without its speech: a press remembers the target, a release pastes
// the text that was given. Commands and reports are lines of JSON, for a test in a virtual desktop.
//
//     {"text": "..."}                                the text of the next release
//     {"event": "ready", "status": 0}                the shortcut is registered
//     {"event": "press", "process": 42, "element": "/path"}
//     {"event": "release", "pasted": true, "took": 182, "blocked": 3}    milliseconds
//
// "blocked" is the longest time for which the event loop stood still since the press.

#include "Fakes/FakePorts.h"
#include "Platform/Linux/AtSpiAccessibility.h"
#include "Platform/Linux/DesktopPermissions.h"
#include "Platform/Linux/QtPasteboard.h"
#include "Platform/Linux/SystemClock.h"
#include "Platform/Linux/XTestKeyboard.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/Linux/XcbWorkspace.h"
#include "Services/HotkeyController.h"
#include "Services/SystemIntegration.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace lorvane {
namespace {

void report(const QJsonObject &line) {
    std::cout << QJsonDocument(line).toJson(QJsonDocument::Compact).constData() << std::endl;
}

/// The longest pause between two turns of the event loop.
class Watchdog {
public:
    Watchdog() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(2);
        QObject::connect(&timer_, &QTimer::timeout, [this] { look(); });
    }
    void start() {
        longest_ = 0;
        sinceTurn_.start();
        timer_.start();
    }
    qint64 stop() {
        look();
        timer_.stop();
        return longest_;
    }

private:
    void look() { longest_ = std::max(longest_, sinceTurn_.restart()); }

    QTimer timer_;
    QElapsedTimer sinceTurn_;
    qint64 longest_ = 0;
};

class PasteProbe {
public:
    void start() {
        qint32 status = 0;
        try {
            shortcut_.registerShortcut([this] { press(); }, [this] { Task<>::run(release()); });
        } catch (const HotkeyController::HotkeyError &error) {
            status = error.status;
        }
        report({{u"event"_s, u"ready"_s}, {u"status"_s, status}});
        QObject::connect(&input_, &QSocketNotifier::activated, [this] { readCommands(); });
    }

private:
    void press() {
        watchdog_.start();
        target_ = integration_.captureDestination(std::nullopt, true);
        Task<>::run(reportTarget(target_));
    }

    static Async<> reportTarget(std::optional<SystemIntegration::PasteDestination> target) {
        QJsonObject line{{u"event"_s, u"press"_s}};
        if (target)
            line.insert(u"process"_s, target->app.processId);
        if (target && target->focusedElement) {
            const auto element = co_await target->focusedElement;
            if (element)
                line.insert(u"element"_s, element->path);
        }
        report(line);
    }

    Async<> release() {
        QElapsedTimer timer;
        timer.start();
        const bool pasted = co_await integration_.paste(text_, target_);
        report({{u"event"_s, u"release"_s},
                {u"pasted"_s, pasted},
                {u"took"_s, timer.elapsed()},
                {u"blocked"_s, watchdog_.stop()}});
    }

    void readCommands() {
        char buffer[4096];
        const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            return QCoreApplication::quit();
        commands_.append(buffer, static_cast<qsizetype>(count));
        while (commands_.contains('\n')) {
            const qsizetype end = commands_.indexOf('\n');
            text_ = QJsonDocument::fromJson(commands_.left(end)).object()[u"text"].toString();
            commands_.remove(0, end + 1);
        }
    }

    static Async<bool> refuse(QString) { co_return false; }

    FakePorts fakes_;
    SystemClock clock_;
    XTestKeyboard keyboard_;
    DesktopPermissions permissions_{QDBusConnection::sessionBus(), fakes_.userDefaults, refuse,
                                    [this] { return keyboard_.isAvailable(); }};
    XcbHotKey hotKey_;
    XcbWorkspace workspace_;
    AtSpiAccessibility accessibility_;
    QtPasteboard pasteboard_;
    SystemIntegration integration_{
        Ports{clock_, fakes_.audioInput, fakes_.audioFile, fakes_.speech, permissions_, hotKey_,
              workspace_, accessibility_, keyboard_, pasteboard_, fakes_.screens,
              fakes_.overlayPanel, fakes_.userDefaults, fakes_.savePanel}};
    HotkeyController shortcut_{hotKey_};
    std::optional<SystemIntegration::PasteDestination> target_;
    QString text_;
    Watchdog watchdog_;
    QSocketNotifier input_{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray commands_;
};

} // namespace
} // namespace lorvane

int main(int argc, char **argv) {
    const QGuiApplication application(argc, argv);
    lorvane::PasteProbe probe;
    probe.start();
    return QGuiApplication::exec();
}
