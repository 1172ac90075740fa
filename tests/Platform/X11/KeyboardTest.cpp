#include "Platform/Keyboard.h"

#include "Fakes/FakeKeyboard.h"
#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/XTestKeyboard.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <vector>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

[[maybe_unused]] const bool inDesktop = VirtualDesktop::use(VirtualDesktop::windowManager);

/// Longer than a busy machine keeps the server from answering: what is looked at is where the keys
/// go, not how soon.
constexpr auto patient = 10s;

constexpr xcb_keysym_t superLeft = 0xffeb;
constexpr xcb_keysym_t levelThreeShift = 0xfe03;

void giveFocus(X11Client &user, xcb_window_t window) {
    xcb_set_input_focus(user.connection().get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    user.synchronize();
}

/// A window with the focus, and a keyboard that types into it.
class XTestKeyboardTest : public testing::Test {
protected:
    void SetUp() override {
        window = user.showWindow(0);
        ASSERT_TRUE(user.bringForward(window));
        ASSERT_TRUE(waitUntil([&] { return hasFocus(); }));
        user.keyPresses.clear();
    }
    void TearDown() override { setLayout(QStringLiteral("us")); }

    bool hasFocus() {
        const auto focus = user.connection().reply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(user.connection().get()), QDeadlineTimer(1s));
        return focus && focus->focus == window;
    }

    RunningApplication front() const { return {0, window, 0}; }

    void setLayout(const QString &layout, const QString &variant = {}) {
        ASSERT_TRUE(VirtualDesktop::current().run(
            QStringLiteral("setxkbmap"),
            {QStringLiteral("-layout"), layout, QStringLiteral("-variant"), variant}));
    }

    /// The window got one key, with these modifiers alone.
    bool awaitPaste(xcb_keycode_t key, int modifiers = XCB_MOD_MASK_CONTROL) {
        constexpr uint16_t allModifiers = 0xff;
        const auto isPaste = [&](const xcb_key_press_event_t &event) {
            return event.detail == key && (event.state & allModifiers) == modifiers;
        };
        return waitUntil([&] { return std::ranges::count_if(user.keyPresses, isPaste) == 1; }, 2s);
    }

    X11Client user;
    xcb_window_t window = 0;
    XTestKeyboard keyboard{patient};
};

TEST_F(XTestKeyboardTest, TypesControlAndVOnce) {
    ASSERT_TRUE(keyboard.isAvailable());
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v)));
    EXPECT_EQ(user.keyPresses.size(), 2u);
    EXPECT_FALSE(user.isDown(user.key(KeySymbol::v)));
    EXPECT_FALSE(user.isDown(user.key(KeySymbol::controlLeft)));
}

TEST_F(XTestKeyboardTest, ReleasesWhatTheUserHoldsAndDoesNotPressItAgain) {
    const std::vector<xcb_keysym_t> held = {KeySymbol::controlLeft, KeySymbol::altLeft,
                                            KeySymbol::shiftLeft, superLeft, levelThreeShift};
    for (const xcb_keysym_t symbol : held)
        user.press(symbol);
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v)));
    for (const xcb_keysym_t symbol : held)
        EXPECT_FALSE(user.isDown(user.key(symbol))) << symbol;
}

TEST_F(XTestKeyboardTest, TypesWhatPastesInATerminal) {
    user.setClass(window, "gnome-terminal-server", "Gnome-terminal");
    user.press(KeySymbol::controlLeft);
    user.press(KeySymbol::altLeft);
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT));
    for (const xcb_keysym_t symbol :
         {KeySymbol::v, KeySymbol::controlLeft, KeySymbol::shiftLeft, KeySymbol::altLeft})
        EXPECT_FALSE(user.isDown(user.key(symbol))) << symbol;
}

TEST_F(XTestKeyboardTest, TypesWhatPastesInProgramsThatHaveControlVForSomethingElse) {
    user.setClass(window, "urxvt", "URxvt");
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1));
    user.setClass(window, "emacs", "Emacs");
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::insert), XCB_MOD_MASK_SHIFT));
}

TEST_F(XTestKeyboardTest, PostsNothingWhereNoKeyPastes) {
    user.press(KeySymbol::altLeft);
    for (const char *const name : {"XTerm", "UXTerm", "Gvim"}) {
        user.setClass(window, name, name);
        EXPECT_FALSE(keyboard.postPaste(front())) << name;
    }
    EXPECT_TRUE(user.isDown(user.key(KeySymbol::altLeft)));
    user.release(KeySymbol::altLeft);
}

TEST_F(XTestKeyboardTest, IsNotConfusedByAnOddClass) {
    for (const char *const name : {"", "Some-editor", "not XTerm"}) {
        user.keyPresses.clear();
        user.setClass(window, "xterm", name);
        ASSERT_TRUE(keyboard.postPaste(front())) << name;
        EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v))) << name;
    }
}

TEST_F(XTestKeyboardTest, ReachesTheWindowWhileTheShortcutIsHeldDown) {
    XcbHotKey hotKey;
    bool isHeld = false;
    ASSERT_EQ(hotKey.registerHotKey({1, 1}, [&](const HotKeyEvent &e) { isHeld = e.isPressed; }),
              0);
    user.press(KeySymbol::controlLeft);
    user.press(KeySymbol::altLeft);
    user.press(KeySymbol::space);
    ASSERT_TRUE(waitUntil([&] { return isHeld; }));
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v)));
    EXPECT_TRUE(waitUntil([&] { return !isHeld; }));
}

TEST_F(XTestKeyboardTest, LocksStayAsTheyAre) {
    user.tap(KeySymbol::numLock);
    user.keyPresses.clear();
    ASSERT_TRUE(keyboard.postPaste(front()));
    const xcb_keycode_t key = user.key(KeySymbol::v);
    EXPECT_TRUE(waitUntil([&] {
        return !user.keyPresses.empty() && user.keyPresses.back().detail == key &&
               user.keyPresses.back().state == (XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_2);
    }));
    user.tap(KeySymbol::numLock);
}

TEST_F(XTestKeyboardTest, FindsVWhereTheLayoutHasIt) {
    const xcb_keycode_t place = user.key(KeySymbol::v);
    setLayout(QStringLiteral("us"), QStringLiteral("dvorak"));
    ASSERT_NE(user.key(KeySymbol::v), place);
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v)));
}

TEST_F(XTestKeyboardTest, FindsVInAnotherLayoutWhenThePresentOneHasNone) {
    const xcb_keycode_t place = user.key(KeySymbol::v);
    setLayout(QStringLiteral("ru,us"));
    ASSERT_TRUE(keyboard.postPaste(front()));
    EXPECT_TRUE(awaitPaste(place));
}

TEST_F(XTestKeyboardTest, PostsNothingWhenNoLayoutHasV) {
    setLayout(QStringLiteral("ru"));
    user.press(KeySymbol::altLeft);
    EXPECT_FALSE(keyboard.postPaste(front()));
    EXPECT_TRUE(user.isDown(user.key(KeySymbol::altLeft)));
    user.release(KeySymbol::altLeft);
}

TEST_F(XTestKeyboardTest, TypesNothingOnceTheKeysGoToAnotherWindow) {
    const xcb_window_t other = user.showWindow(0);
    ASSERT_TRUE(user.bringForward(other));
    user.press(KeySymbol::altLeft);
    user.keyPresses.clear();
    EXPECT_FALSE(keyboard.postPaste(front()));
    EXPECT_TRUE(user.isDown(user.key(KeySymbol::altLeft)));
    // What is typed after it shows that the time has come.
    ASSERT_TRUE(keyboard.postPaste({0, other, 0}));
    EXPECT_TRUE(awaitPaste(user.key(KeySymbol::v)));
    user.destroyWindow(other);
}

TEST_F(XTestKeyboardTest, ReachesAPartOfTheWindow) {
    giveFocus(user, user.showPart(window));
    EXPECT_TRUE(keyboard.postPaste(front()));
}

TEST_F(XTestKeyboardTest, LetsTheServerGoOnAfterwards) {
    EXPECT_TRUE(keyboard.postPaste(front()));
    user.synchronize();
    EXPECT_FALSE(keyboard.postPaste({}));
    user.synchronize();
}

/// On a server of its own, where nobody but the test moves the focus.
class XTestKeyboardAloneTest : public testing::Test {
protected:
    VirtualDesktop brief{VirtualDesktop::server};
    X11Client user;
    XTestKeyboard keyboard{patient};
    const xcb_window_t window = user.showWindow(0);
    const RunningApplication front{0, window, 0};
};

TEST_F(XTestKeyboardAloneTest, AsksTheServerWhereTheKeysGoNotTheWindowManager) {
    giveFocus(user, window);
    EXPECT_TRUE(keyboard.postPaste(front));
    giveFocus(user, user.showWindow(0));
    EXPECT_FALSE(keyboard.postPaste(front));
    giveFocus(user, XCB_INPUT_FOCUS_POINTER_ROOT);
    EXPECT_FALSE(keyboard.postPaste(front));
}

TEST_F(XTestKeyboardAloneTest, TypesNothingInTheMiddleOfAClick) {
    giveFocus(user, window);
    user.button(true);
    EXPECT_FALSE(keyboard.postPaste(front));
    user.button(false);
    EXPECT_TRUE(keyboard.postPaste(front));
}

TEST_F(XTestKeyboardAloneTest, TypesNothingForAMomentAfterAClick) {
    giveFocus(user, window);
    ASSERT_TRUE(keyboard.postPaste(front));
    user.button(true);
    user.button(false);
    EXPECT_FALSE(keyboard.postPaste(front));
    EXPECT_TRUE(waitUntil([&] { return keyboard.postPaste(front); }));
}

TEST(XTestKeyboardWithoutServer, IsNotAvailable) {
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    XTestKeyboard keyboard;
    EXPECT_FALSE(keyboard.isAvailable());
    EXPECT_FALSE(keyboard.postPaste({}));
    qputenv("DISPLAY", display);
}

TEST(XTestKeyboardWithoutServer, IsNotHeldUpByAStoppedServer) {
    VirtualDesktop brief(VirtualDesktop::server);
    XTestKeyboard keyboard(500ms);
    ASSERT_TRUE(keyboard.isAvailable());
    ::kill(static_cast<pid_t>(brief.xServer().processId()), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(keyboard.postPaste({}));
    EXPECT_LT(timer.elapsed(), 2000);
}

TEST(FakeKeyboardContract, SaysWhetherItCouldPost) {
    FakeKeyboard keyboard;
    EXPECT_TRUE(keyboard.postPaste({}));
    keyboard.canPost = false;
    EXPECT_FALSE(keyboard.postPaste({}));
    EXPECT_EQ(keyboard.pasteCount, 1);
}

} // namespace
} // namespace lorvane
