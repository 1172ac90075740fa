#include "Platform/Workspace.h"

#include "Fakes/FakeWorkspace.h"
#include "Platform/Linux/ProcessTable.h"
#include "Platform/Linux/XcbWorkspace.h"
#include "Platform/X11/FileManager.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QFile>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace lorvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

[[maybe_unused]] const bool inDesktop =
    VirtualDesktop::use(VirtualDesktop::windowManager | VirtualDesktop::sessionBus);

/// A process without a window of its own.
class Process {
public:
    Process()
        : process_(
              VirtualDesktop::current().start(QStringLiteral("sleep"), {QStringLiteral("100")})) {}
    ~Process() { end(); }

    qint64 id() const { return id_; }
    void end() { VirtualDesktop::current().end(process_); }

private:
    QProcess &process_;
    qint64 id_ = process_.processId();
};

/// The same promises for the fake and for the real one.
struct FakeBench {
    FakeWorkspace workspace;

    RunningApplication open(const Process &process) {
        const RunningApplication application = {process.id(), ++windows_, 1};
        bringForward(application);
        return application;
    }
    void bringForward(const RunningApplication &application) {
        workspace.bringForward(application);
    }
    void end(Process &process) {
        workspace.terminated.insert(process.id());
        process.end();
    }

private:
    quint64 windows_ = 0;
};

struct XcbBench {
    XcbWorkspace workspace;
    X11Client user;

    RunningApplication open(const Process &process) {
        const xcb_window_t window = user.showWindow(process.id());
        bringForward({process.id(), window, 0});
        return {process.id(), window, ProcessTable::startTime(process.id())};
    }
    void bringForward(const RunningApplication &application) {
        EXPECT_TRUE(user.bringForward(static_cast<xcb_window_t>(application.window)));
    }
    void end(Process &process) { process.end(); }
};

template <class Bench>
class WorkspaceContract : public testing::Test {
protected:
    void SetUp() override {
        bench.workspace.observeActivation([this](const RunningApplication &application) {
            activated.push_back(application.processId);
        });
    }
    bool awaitFront(const RunningApplication &application) {
        return waitUntil([&] { return bench.workspace.frontmostApplication() == application; }, 2s);
    }
    bool awaitActivated(const std::vector<qint64> &expected) {
        return waitUntil([&] { return activated == expected; }, 2s);
    }

    Bench bench;
    Process one;
    Process two;
    std::vector<qint64> activated;
};

using Benches = testing::Types<FakeBench, XcbBench>;
TYPED_TEST_SUITE(WorkspaceContract, Benches);

TYPED_TEST(WorkspaceContract, TellsWhoIsInFrontAndWhoComesThere) {
    const auto first = this->bench.open(this->one);
    EXPECT_TRUE(this->awaitFront(first));
    EXPECT_TRUE(this->awaitActivated({this->one.id()}));
    const auto second = this->bench.open(this->two);
    EXPECT_TRUE(this->awaitFront(second));
    EXPECT_TRUE(this->awaitActivated({this->one.id(), this->two.id()}));
    this->bench.bringForward(first);
    EXPECT_TRUE(this->awaitActivated({this->one.id(), this->two.id(), this->one.id()}));
}

TYPED_TEST(WorkspaceContract, ActivatesAnApplication) {
    const auto first = this->bench.open(this->one);
    const auto second = this->bench.open(this->two);
    ASSERT_TRUE(this->awaitFront(second));
    EXPECT_TRUE(this->bench.workspace.activate(first));
    EXPECT_TRUE(this->awaitFront(first));
}

TYPED_TEST(WorkspaceContract, KnowsAnApplicationThatHasEnded) {
    const auto application = this->bench.open(this->one);
    this->bench.open(this->two);
    EXPECT_FALSE(this->bench.workspace.isTerminated(application));
    this->bench.end(this->one);
    EXPECT_TRUE(this->bench.workspace.isTerminated(application));
    EXPECT_FALSE(this->bench.workspace.activate(application));
}

class XcbWorkspaceTest : public testing::Test {
protected:
    RunningApplication application(const Process &owner, xcb_window_t window) {
        return {owner.id(), window, ProcessTable::startTime(owner.id())};
    }
    xcb_window_t open(const Process &owner) {
        const xcb_window_t window = user.showWindow(owner.id());
        EXPECT_TRUE(user.bringForward(window));
        return window;
    }
    bool awaitActive(xcb_window_t window) {
        return waitUntil([&] { return user.activeWindow() == window; }, 2s);
    }

    XcbWorkspace workspace;
    X11Client user;
    Process process;
};

TEST_F(XcbWorkspaceTest, FindsTheProcessOfAWindowThatDoesNotSayIt) {
    const xcb_window_t window = user.showWindow(0);
    ASSERT_TRUE(user.bringForward(window));
    const auto front = workspace.frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->processId, ::getpid());
    EXPECT_EQ(front->window, window);
    EXPECT_EQ(front->startTime, ProcessTable::startTime(::getpid()));
}

TEST_F(XcbWorkspaceTest, HasNobodyInFrontWhenTheLastWindowIsGone) {
    const xcb_window_t window = open(process);
    ASSERT_TRUE(workspace.frontmostApplication());
    user.destroyWindow(window);
    EXPECT_TRUE(waitUntil([&] { return !workspace.frontmostApplication(); }));
}

TEST_F(XcbWorkspaceTest, PrefersTheRememberedWindowToTheOthersOfTheProcess) {
    const xcb_window_t first = open(process);
    const xcb_window_t second = open(process);
    const Process other;
    open(other);
    EXPECT_TRUE(workspace.activate(application(process, first)));
    EXPECT_TRUE(awaitActive(first));

    user.destroyWindow(first);
    EXPECT_TRUE(workspace.activate(application(process, first)));
    EXPECT_TRUE(awaitActive(second));
}

TEST_F(XcbWorkspaceTest, DoesNotActivateAWindowThatBelongsToAnotherProcessNow) {
    const Process other;
    const xcb_window_t window = open(other);
    EXPECT_FALSE(workspace.activate(application(process, window)));
}

TEST_F(XcbWorkspaceTest, BringsBackAnIconifiedWindow) {
    const xcb_window_t window = open(process);
    user.iconify(window);
    ASSERT_TRUE(waitUntil([&] { return user.activeWindow() != window; }));
    EXPECT_TRUE(workspace.activate(application(process, window)));
    EXPECT_TRUE(awaitActive(window));
}

TEST_F(XcbWorkspaceTest, GoesToTheDesktopOfTheWindow) {
    const auto desktop = [&] {
        return user.value(user.connection().root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 99);
    };
    const xcb_window_t window = open(process);
    ASSERT_EQ(desktop(), 0u);
    user.ask(window, "_NET_WM_DESKTOP", 2, 2);
    ASSERT_TRUE(waitUntil([&] {
        return user.value(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, 99) == 2 &&
               user.activeWindow() != window;
    }));
    EXPECT_TRUE(workspace.activate(application(process, window)));
    EXPECT_TRUE(awaitActive(window));
    EXPECT_EQ(desktop(), 2u);
    user.ask(user.connection().root(), "_NET_CURRENT_DESKTOP", 0);
    EXPECT_TRUE(waitUntil([&] { return desktop() == 0; }));
}

TEST_F(XcbWorkspaceTest, CannotActivateWithoutAWindowManager) {
    const xcb_window_t window = open(process);
    VirtualDesktop::current().endWindowManager();
    EXPECT_FALSE(workspace.activate(application(process, window)));
    VirtualDesktop::current().startWindowManager();
}

TEST_F(XcbWorkspaceTest, TellsTheSecondProcessOfAnIdFromTheFirst) {
    const auto present = application(process, 0);
    EXPECT_FALSE(workspace.isTerminated(present));
    EXPECT_FALSE(workspace.isTerminated({process.id(), 0, 0}));
    EXPECT_TRUE(workspace.isTerminated({process.id(), 0, present.startTime + 1}));
}

TEST_F(XcbWorkspaceTest, AProcessThatNobodyHasCollectedIsTerminated) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    siginfo_t info = {};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_TRUE(workspace.isTerminated({child, 0, 0}));
    ::waitpid(child, nullptr, 0);
}

/// Programs of the desktop that write down what they are asked for.
class XcbWorkspaceAddressTest : public XcbWorkspaceTest {
protected:
    void SetUp() override {
        const QString folder = VirtualDesktop::current().folder();
        for (const char *program : {"xdg-open", "gnome-control-center", "systemsettings"}) {
            QFile script(folder + u'/' + QString::fromLatin1(program));
            ASSERT_TRUE(script.open(QIODevice::WriteOnly));
            script.write("#!/bin/sh\necho \"${0##*/} $*\" >> " +
                         QFile::encodeName(opened.fileName()) + "\n");
            script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        qputenv("PATH", QFile::encodeName(folder) + ":" + path);
    }
    void TearDown() override {
        qputenv("PATH", path);
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        opened.remove();
    }

    /// What was opened, after `count` lines of it.
    QByteArray awaitOpened(int count) {
        QByteArray lines;
        waitUntil([&] {
            QFile file(opened.fileName());
            if (file.open(QIODevice::ReadOnly))
                lines = file.readAll();
            return lines.count('\n') >= count;
        });
        return lines;
    }
    void open(const char *pane) {
        workspace.openAddress(
            QStringLiteral("x-apple.systempreferences:com.apple.preference.security?") +
            QString::fromLatin1(pane));
    }

    const QByteArray path = qgetenv("PATH");
    const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP");
    QFile opened{VirtualDesktop::current().folder() + QStringLiteral("/opened")};
};

TEST_F(XcbWorkspaceAddressTest, OpensNothingOfAnotherSystemOnADesktopWithoutSuchPages) {
    qputenv("XDG_CURRENT_DESKTOP", "XFCE");
    open("Privacy_Microphone");
    workspace.openAddress(QStringLiteral("https://example.org/a?b=c&d"));
    EXPECT_EQ(awaitOpened(1), "xdg-open https://example.org/a?b=c&d\n");
}

TEST_F(XcbWorkspaceAddressTest, OpensThePrivacyPagesOfGnome) {
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    open("Privacy_Microphone");
    EXPECT_EQ(awaitOpened(1), "gnome-control-center microphone\n");
    open("Privacy_Unknown");
    open("Privacy_Accessibility");
    EXPECT_EQ(awaitOpened(2), "gnome-control-center microphone\n"
                              "gnome-control-center universal-access\n");
}

TEST_F(XcbWorkspaceAddressTest, OpensThePrivacyPagesOfPlasma) {
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    open("Privacy_SpeechRecognition");
    EXPECT_EQ(awaitOpened(1), "systemsettings kcm_app-permissions\n");
}

TEST_F(XcbWorkspaceAddressTest, APageWhoseProgramIsMissingDoesNoHarm) {
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    qputenv("PATH", "/nonexistent");
    open("Privacy_Microphone");
}

TEST_F(XcbWorkspaceTest, ShowsAFileInTheFileManager) {
    const QString path = QStringLiteral("/tmp/a file — 1.txt");
    workspace.showFile(path); // nobody is there: no harm

    const auto name = QStringLiteral("org.freedesktop.FileManager1");
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("files"));
    FileManager manager;
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                   QDBusConnection::ExportAllInvokables));
    ASSERT_TRUE(bus.registerService(name));
    workspace.showFile(path);
    EXPECT_TRUE(waitUntil([&] { return !manager.shown.isEmpty(); }));
    EXPECT_THAT(manager.shown,
                ElementsAre(QStringLiteral("file:///tmp/a%20file%20%E2%80%94%201.txt")));
    bus.unregisterService(name);
    QDBusConnection::disconnectFromBus(QStringLiteral("files"));
}

TEST(XcbWorkspaceWithoutServer, HasNobodyInFront) {
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    XcbWorkspace workspace;
    EXPECT_FALSE(workspace.frontmostApplication());
    EXPECT_FALSE(workspace.activate({::getpid(), 1, 0}));
    EXPECT_FALSE(workspace.isTerminated({::getpid(), 1, 0}));
    qputenv("DISPLAY", display);
}

TEST(XcbWorkspaceWithoutServer, IsNotHeldUpByAStoppedServer) {
    VirtualDesktop brief(VirtualDesktop::windowManager);
    XcbWorkspace workspace;
    X11Client user;
    ASSERT_TRUE(user.bringForward(user.showWindow(0)));
    ASSERT_TRUE(workspace.frontmostApplication());
    ::kill(static_cast<pid_t>(brief.xServer().processId()), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(workspace.frontmostApplication());
    EXPECT_LT(timer.restart(), 200);
    EXPECT_FALSE(workspace.activate({::getpid(), 1, 0}));
    EXPECT_LT(timer.elapsed(), 200);
    ::kill(static_cast<pid_t>(brief.xServer().processId()), SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return workspace.frontmostApplication().has_value(); }));
}

} // namespace
} // namespace lorvane
