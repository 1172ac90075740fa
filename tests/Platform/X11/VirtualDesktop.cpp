#include "Platform/X11/VirtualDesktop.h"

#include "Platform/Linux/X11Connection.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

std::unique_ptr<VirtualDesktop> currentDesktop;

class DesktopEnvironment final : public testing::Environment {
public:
    explicit DesktopEnvironment(int parts) : parts_(parts) {}

    void SetUp() override {
        static int argc = 1;
        static char name[] = "test";
        static char *argv[] = {name, nullptr};
        application_ = std::make_unique<QCoreApplication>(argc, argv);
        currentDesktop = std::make_unique<VirtualDesktop>(parts_);
    }
    void TearDown() override {
        currentDesktop.reset();
        application_.reset();
    }

private:
    int parts_;
    std::unique_ptr<QCoreApplication> application_;
};

void require(bool condition, const char *what) {
    if (!condition)
        throw std::runtime_error(what);
}

/// An empty value removes the variable.
void putVariable(const char *name, const QByteArray &value) {
    if (value.isEmpty())
        qunsetenv(name);
    else
        qputenv(name, value);
}

QByteArray firstLine(QProcess &process) {
    const QDeadlineTimer deadline(10s);
    while (!process.canReadLine() && !deadline.hasExpired())
        process.waitForReadyRead(100);
    return process.readLine().trimmed();
}

} // namespace

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    QTimer waker; // for conditions that no event of this process tells of
    waker.start(2ms);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool VirtualDesktop::use(int parts) {
    testing::AddGlobalTestEnvironment(new DesktopEnvironment(parts));
    return true;
}

VirtualDesktop &VirtualDesktop::current() { return *currentDesktop; }

VirtualDesktop::VirtualDesktop(int parts) {
    setVariable("WAYLAND_DISPLAY", {});
    setVariable("AT_SPI_BUS_ADDRESS", {});
    setVariable("LANG", "C.UTF-8");
    const auto setFolder = [this](const char *variable, const QString &name) {
        require(QDir(folder()).mkdir(name), "cannot make the desktop's folders");
        setVariable(variable, QFile::encodeName(folder() + u'/' + name));
    };
    setFolder("XDG_RUNTIME_DIR", QStringLiteral("run"));
    setFolder("HOME", QStringLiteral("home"));
    setFolder("XDG_CONFIG_HOME", QStringLiteral("config"));
    setFolder("XDG_CACHE_HOME", QStringLiteral("cache"));
    setFolder("XDG_DATA_HOME", QStringLiteral("data"));
    QFile::setPermissions(folder() + QStringLiteral("/run"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    startServer();
    if (parts & sessionBus)
        startSessionBus();
    if (parts & (accessibilityBus & ~sessionBus))
        startAccessibilityBus();
    if (parts & windowManager)
        startWindowManager();
}

VirtualDesktop::~VirtualDesktop() {
    while (!processes_.empty()) {
        end(*processes_.back());
        processes_.pop_back();
    }
    for (const auto &[name, value] : oldVariables_)
        putVariable(name, value);
}

void VirtualDesktop::setVariable(const char *name, const QByteArray &value) {
    oldVariables_.emplace_back(name, qgetenv(name));
    putVariable(name, value);
}

QProcess &VirtualDesktop::start(const QString &program, const QStringList &arguments) {
    auto &process = *processes_.emplace_back(std::make_unique<QProcess>());
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process.setStandardErrorFile(folder() + u'/' + program.section(u'/', -1) +
                                 QStringLiteral(".log"));
    process.start(program, arguments);
    require(process.waitForStarted(), qPrintable(QStringLiteral("cannot start ") + program));
    return process;
}

bool VirtualDesktop::run(const QString &program, const QStringList &arguments) {
    QProcess &process = start(program, arguments);
    return waitUntil([&] { return process.state() == QProcess::NotRunning; }) &&
           process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

void VirtualDesktop::end(QProcess &process) {
    if (process.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(process.processId()), SIGCONT); // a test may have stopped it
    process.terminate();
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(3000);
    }
}

void VirtualDesktop::startServer() {
    // The server chooses the number and writes it when it is ready.
    QProcess &process =
        start(QStringLiteral("Xvfb"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
               QStringLiteral("0"), QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"),
               QStringLiteral("tcp"), QStringLiteral("-noreset")});
    const QByteArray number = firstLine(process);
    require(!number.isEmpty(), "the X server doesn't start");
    setVariable("DISPLAY", ":" + number);
}

void VirtualDesktop::startSessionBus() {
    QProcess &process = start(QStringLiteral("dbus-daemon"),
                              {QStringLiteral("--session"), QStringLiteral("--nofork"),
                               QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1"),
                               QStringLiteral("--address=unix:path=%1/run/bus").arg(folder())});
    const QByteArray address = firstLine(process);
    require(!address.isEmpty(), "the session bus doesn't start");
    setVariable("DBUS_SESSION_BUS_ADDRESS", address);
}

void VirtualDesktop::startAccessibilityBus() {
    accessibilityBus_ =
        &start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"),
               {QStringLiteral("--launch-immediately"), QStringLiteral("--a11y=1")});
    const auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
        QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"));
    QString address;
    const auto isReady = [&] {
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
        address = reply.arguments().value(0).toString();
        return reply.type() == QDBusMessage::ReplyMessage;
    };
    require(waitUntil(isReady), "the accessibility bus doesn't start");

    const auto name = QStringLiteral("accessibility daemon");
    accessibilityDaemon_ = QDBusConnection::connectToBus(address, name)
                               .interface()
                               ->servicePid(QStringLiteral("org.freedesktop.DBus"));
    QDBusConnection::disconnectFromBus(name);
}

void VirtualDesktop::endAccessibilityBus() {
    end(*accessibilityBus_);
    // Its launcher doesn't always take the bus along.
    if (accessibilityDaemon_ > 0)
        ::kill(static_cast<pid_t>(accessibilityDaemon_), SIGTERM);
}

void VirtualDesktop::startWindowManager() {
    windowManager_ = &start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    X11Connection connection;
    const auto isReady = [&] {
        const QDeadlineTimer deadline(1s);
        const xcb_atom_t atom = connection.atom("_NET_SUPPORTING_WM_CHECK", deadline);
        const auto window = connection.reply<xcb_get_property_reply_t>(
            xcb_get_property(connection.get(), false, connection.root(), atom, XCB_ATOM_WINDOW, 0,
                             1),
            deadline);
        return window && window->value_len == 1;
    };
    require(waitUntil(isReady), "the window manager doesn't start");
}

} // namespace lorvane
