#include "Fakes/FakePasteboard.h"
#include "Fakes/FakeScreens.h"
#include "Platform/Linux/DesktopStruts.h"
#include "Platform/Linux/QtPasteboard.h"
#include "Platform/Linux/QtScreens.h"
#include "PrivateServers.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace lorvane {
namespace {

/// One X server and one application for all tests of this program.
class Desktop : public testing::Environment {
public:
    void SetUp() override {
        display_ = std::make_unique<PrivateDisplay>();
        qputenv("DISPLAY", display_->name().toUtf8());
        qputenv("QT_QPA_PLATFORM", "xcb");
        // The panel's place, which a window manager would announce.
        run(QStringLiteral("xprop"),
            {QStringLiteral("-root"), QStringLiteral("-f"), QStringLiteral("_NET_WORKAREA"),
             QStringLiteral("32c"), QStringLiteral("-set"), QStringLiteral("_NET_WORKAREA"),
             QStringLiteral("0, 30, 1280, 770")});
        application_ = std::make_unique<QGuiApplication>(count_, nullptr);
    }
    void TearDown() override {
        application_.reset();
        display_.reset();
    }

private:
    int count_ = 0;
    std::unique_ptr<PrivateDisplay> display_;
    std::unique_ptr<QGuiApplication> application_;
};

const auto *const desktop = testing::AddGlobalTestEnvironment(new Desktop);

bool waitUntil(const std::function<bool()> &condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

/// What another program finds on the clipboard, while this one serves it.
QString pastedByAnotherProgram() {
    QProcess program;
    program.start(QStringLiteral("xclip"),
                  {QStringLiteral("-selection"), QStringLiteral("clipboard"), QStringLiteral("-t"),
                   QStringLiteral("UTF8_STRING"), QStringLiteral("-o")});
    waitUntil([&] { return program.state() == QProcess::NotRunning; });
    return QString::fromUtf8(program.readAllStandardOutput());
}

struct InMemory {
    FakePasteboard pasteboard;
    QString pasted() const { return pasteboard.text.value_or(QString()); }
};

struct OnX11 {
    QtPasteboard pasteboard;
    static QString pasted() { return pastedByAnotherProgram(); }
};

template <class Driver>
class PasteboardTest : public testing::Test {
protected:
    Driver driver;
};
using Pasteboards = testing::Types<InMemory, OnX11>;
TYPED_TEST_SUITE(PasteboardTest, Pasteboards);

TYPED_TEST(PasteboardTest, TheLastStringIsThereWhole) {
    this->driver.pasteboard.setText(QStringLiteral("first"));
    EXPECT_EQ(this->driver.pasted(), QStringLiteral("first"));
    const QString text = QStringLiteral("Second: “quoted” äöü 録音 🎤\nnext line\t– end ");
    this->driver.pasteboard.setText(text);
    EXPECT_EQ(this->driver.pasted(), text);
}

TYPED_TEST(PasteboardTest, ALongStringIsThereWhole) {
    const QString text = QStringLiteral("word ").repeated(100'000);
    this->driver.pasteboard.setText(text);
    EXPECT_EQ(this->driver.pasted(), text);
}

template <class Implementation>
class ScreensTest : public testing::Test {
protected:
    Implementation screens;
};
using AllScreens = testing::Types<FakeScreens, QtScreens>;
TYPED_TEST_SUITE(ScreensTest, AllScreens);

TYPED_TEST(ScreensTest, TheMainScreenIsOneOfThemAndLeavesThePanelOut) {
    const Screen expected{QRect(0, 0, 1280, 800), QRect(0, 30, 1280, 770)};
    EXPECT_EQ(this->screens.screens(), QList<Screen>{expected});
    EXPECT_EQ(this->screens.mainScreen(), expected);
}

TYPED_TEST(ScreensTest, ThePointerIsOnAScreen) {
    EXPECT_TRUE(this->screens.mainScreen()->frame.contains(this->screens.pointer()));
}

TEST(DesktopStrutsTest, EachMonitorLosesWhatPanelsTakeOfIt) {
    const QRect left(0, 0, 640, 800);
    const QRect right(640, 0, 640, 600);
    EXPECT_EQ(DesktopStruts::freePart(left, {}), left);
    // Along its lower edge, which is above that of the desktop.
    const QRect below(640, 560, 640, 240);
    EXPECT_EQ(DesktopStruts::freePart(left, {below}), left);
    EXPECT_EQ(DesktopStruts::freePart(right, {below}), QRect(640, 0, 640, 560));
    // One above both, and one at the side.
    const QList<QRect> both = {QRect(0, 0, 1280, 30), QRect(0, 0, 50, 800)};
    EXPECT_EQ(DesktopStruts::freePart(left, both), QRect(50, 30, 590, 770));
    EXPECT_EQ(DesktopStruts::freePart(right, both), QRect(640, 30, 640, 570));
}

TEST(DesktopStrutsTest, APanelThatTakesAllOfAMonitorCountsForNothing) {
    const QRect monitor(0, 0, 640, 800);
    EXPECT_EQ(DesktopStruts::freePart(monitor, {monitor}), monitor);
}

TEST(QtScreensTest, ThePointerIsWhereAnotherProgramMovedIt) {
    QtScreens screens;
    for (const QPoint place : {QPoint(100, 200), QPoint(1279, 799)}) {
        run(QStringLiteral("xdotool"),
            {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())});
        EXPECT_TRUE(waitUntil([&] { return screens.pointer() == place; }));
    }
}

TEST(QtScreensTest, AMonitorThatIsAddedShows) {
    QtScreens screens;
    run(QStringLiteral("xrandr"),
        {QStringLiteral("--setmonitor"), QStringLiteral("left"),
         QStringLiteral("640/300x800/300+0+0"), QStringLiteral("screen")});
    run(QStringLiteral("xrandr"),
        {QStringLiteral("--setmonitor"), QStringLiteral("right"),
         QStringLiteral("640/300x800/300+640+0"), QStringLiteral("none")});
    ASSERT_TRUE(waitUntil([&] { return screens.screens().size() == 2; }));
    EXPECT_TRUE(screens.screens()[0].frame.united(screens.screens()[1].frame) ==
                QRect(0, 0, 1280, 800));
}

} // namespace
} // namespace lorvane
