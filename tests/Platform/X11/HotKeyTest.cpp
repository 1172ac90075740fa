#include "Platform/HotKey.h"

#include "Fakes/FakeHotKey.h"
#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/X11/Editor.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

#include <QThread>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

[[maybe_unused]] const bool inDesktop =
    VirtualDesktop::use(VirtualDesktop::windowManager | VirtualDesktop::sessionBus);

constexpr HotKeyId hotKeyId = {7, 1};
constexpr qint32 badAccess = 10;

/// Writes down what the hot key reports: "+" for a press and "-" for a release.
class Reports {
public:
    HotKey::Handler handler() {
        return [this](const HotKeyEvent &event) {
            text_ += event.isPressed ? '+' : '-';
            lastId_ = event.hotKey;
        };
    }
    const std::string &text() const { return text_; }
    HotKeyId lastId() const { return lastId_; }
    bool await(const std::string &expected) const {
        return waitUntil([&] { return text_.size() >= expected.size(); }, 2s) && text_ == expected;
    }

private:
    std::string text_;
    HotKeyId lastId_;
};

/// The user's hands on the three keys.
class Hands {
public:
    void press() {
        user.press(KeySymbol::controlLeft);
        user.press(KeySymbol::altLeft);
        user.press(KeySymbol::space);
    }
    void release() {
        user.release(KeySymbol::space);
        user.release(KeySymbol::altLeft);
        user.release(KeySymbol::controlLeft);
    }

    X11Client user;
};

/// The same promises for the fake and for the real one.
struct FakeBench {
    FakeHotKey hotKey;
    void press() { hotKey.press(); }
    void release() { hotKey.release(); }
};

struct XcbBench {
    XcbHotKey hotKey;
    Hands hands;
    void press() { hands.press(); }
    void release() { hands.release(); }
};

template <class Bench>
class HotKeyContract : public testing::Test {
protected:
    Bench bench;
    Reports reports;
};

using Benches = testing::Types<FakeBench, XcbBench>;
TYPED_TEST_SUITE(HotKeyContract, Benches);

TYPED_TEST(HotKeyContract, ReportsPressAndReleaseWithTheId) {
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, this->reports.handler()), 0);
    this->bench.press();
    EXPECT_TRUE(this->reports.await("+"));
    this->bench.release();
    EXPECT_TRUE(this->reports.await("+-"));
    EXPECT_EQ(this->reports.lastId(), hotKeyId);
}

TYPED_TEST(HotKeyContract, ReportsNothingAfterItWasUnregistered) {
    Reports later;
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, this->reports.handler()), 0);
    this->bench.hotKey.unregisterHotKey();
    this->bench.hotKey.unregisterHotKey();
    this->bench.press();
    this->bench.release();
    // What a later registration reports shows that the time has come.
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, later.handler()), 0);
    this->bench.press();
    this->bench.release();
    EXPECT_TRUE(later.await("+-"));
    EXPECT_EQ(this->reports.text(), "");
}

TYPED_TEST(HotKeyContract, ASecondRegistrationReplacesTheFirst) {
    Reports second;
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, this->reports.handler()), 0);
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, second.handler()), 0);
    this->bench.press();
    this->bench.release();
    EXPECT_TRUE(second.await("+-"));
    EXPECT_EQ(this->reports.text(), "");
}

TYPED_TEST(HotKeyContract, UnregisteringWithoutARegistrationIsHarmless) {
    this->bench.hotKey.unregisterHotKey();
    EXPECT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, this->reports.handler()), 0);
}

TYPED_TEST(HotKeyContract, TheHandlerMayUnregister) {
    int calls = 0;
    ASSERT_EQ(this->bench.hotKey.registerHotKey(hotKeyId,
                                                [&](const HotKeyEvent &) {
                                                    ++calls;
                                                    this->bench.hotKey.unregisterHotKey();
                                                }),
              0);
    this->bench.press();
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
    this->bench.release();
    EXPECT_EQ(this->bench.hotKey.registerHotKey(hotKeyId, this->reports.handler()), 0);
}

class XcbHotKeyTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(hotKey.registerHotKey(hotKeyId, reports.handler()), 0); }

    void setLayout(const QString &layout) {
        ASSERT_TRUE(VirtualDesktop::current().run(QStringLiteral("setxkbmap"),
                                                  {QStringLiteral("-layout"), layout}));
    }

    XcbHotKey hotKey;
    Reports reports;
    Hands hands;
};

TEST_F(XcbHotKeyTest, AHeldKeyReportsRepeatedPressesAndOneRelease) {
    hands.press();
    EXPECT_TRUE(waitUntil([&] { return reports.text().size() >= 5; }));
    hands.release();
    EXPECT_TRUE(waitUntil([&] { return reports.text().ends_with('-'); }));
    EXPECT_EQ(std::count(reports.text().begin(), reports.text().end(), '-'), 1);
}

TEST_F(XcbHotKeyTest, ReportsTheReleaseAlsoWhenControlAndAltComeUpFirst) {
    hands.press();
    hands.user.release(KeySymbol::controlLeft);
    hands.user.release(KeySymbol::altLeft);
    EXPECT_TRUE(reports.await("+"));
    hands.user.release(KeySymbol::space);
    EXPECT_TRUE(reports.await("+-"));
}

TEST_F(XcbHotKeyTest, TheLockKeysDoNotMatterInAnyCombination) {
    // Few maps have a modifier for Scroll Lock: then it can't be in the way.
    constexpr uint16_t scrollLockMask = XCB_MOD_MASK_3;
    ASSERT_TRUE(VirtualDesktop::current().run(
        QStringLiteral("xmodmap"),
        {QStringLiteral("-e"), QStringLiteral("add mod3 = Scroll_Lock")}));
    const std::vector<std::pair<xcb_keysym_t, uint16_t>> locks = {
        {KeySymbol::capsLock, XCB_MOD_MASK_LOCK},
        {KeySymbol::numLock, XCB_MOD_MASK_2},
        {KeySymbol::scrollLock, scrollLockMask}};
    std::string expected;
    for (unsigned int set = 0; set < 8; ++set) {
        uint16_t wanted = 0;
        const auto tapSet = [&] {
            for (unsigned int i = 0; i < locks.size(); ++i) {
                if (set & 1u << i)
                    hands.user.tap(locks[i].first);
            }
        };
        for (unsigned int i = 0; i < locks.size(); ++i)
            wanted |= set & 1u << i ? locks[i].second : uint16_t(0);
        tapSet();
        ASSERT_EQ(hands.user.modifiers(), wanted);
        hands.press();
        hands.release();
        expected += "+-";
        EXPECT_TRUE(reports.await(expected)) << set << ": " << reports.text();
        tapSet();
    }
    ASSERT_EQ(hands.user.modifiers(), 0);
    setLayout(QStringLiteral("us"));
}

TEST_F(XcbHotKeyTest, ASecondHolderIsRefusedAndTheFirstGoesOn) {
    XcbHotKey second;
    Reports other;
    EXPECT_EQ(second.registerHotKey(hotKeyId, other.handler()), badAccess);
    hands.press();
    hands.release();
    EXPECT_TRUE(reports.await("+-"));
    EXPECT_EQ(other.text(), "");

    hotKey.unregisterHotKey();
    EXPECT_EQ(second.registerHotKey(hotKeyId, other.handler()), 0);
}

TEST_F(XcbHotKeyTest, ARefusedRegistrationHoldsNothing) {
    hotKey.unregisterHotKey();
    X11Client other;
    const xcb_keycode_t space = other.key(KeySymbol::space);
    constexpr uint16_t combination = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    ASSERT_EQ(other.grab(space, combination | XCB_MOD_MASK_LOCK), 0);
    EXPECT_EQ(hotKey.registerHotKey(hotKeyId, reports.handler()), badAccess);
    EXPECT_EQ(other.grab(space, combination), 0);
}

/// The Space key has gone elsewhere.
class XcbHotKeyWithAnotherSpaceTest : public XcbHotKeyTest {
protected:
    void SetUp() override {
        XcbHotKeyTest::SetUp();
        hands.user.map(elsewhere, KeySymbol::space);
        hands.user.map(space, 0);
    }

    void TearDown() override {
        hands.user.map(space, KeySymbol::space);
        hands.user.map(elsewhere, 0);
    }

    void expectItFollows() {
        X11Client rival; // finds the old place free when the hot key has followed
        EXPECT_TRUE(waitUntil(
            [&] { return rival.grab(space, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1) == 0; }));

        hands.user.press(KeySymbol::controlLeft);
        hands.user.press(KeySymbol::altLeft);
        hands.user.pressKey(elsewhere);
        hands.user.releaseKey(elsewhere);
        hands.user.release(KeySymbol::altLeft);
        hands.user.release(KeySymbol::controlLeft);
        EXPECT_TRUE(reports.await("+-")) << reports.text();
    }

    static constexpr xcb_keycode_t elsewhere = 96; // a function key
    const xcb_keycode_t space = hands.user.key(KeySymbol::space);
};

TEST_F(XcbHotKeyWithAnotherSpaceTest, FollowsIt) { expectItFollows(); }

TEST_F(XcbHotKeyWithAnotherSpaceTest, FollowsItThoughTheServerIsLongInAnswering) {
    hands.user.synchronize(); // the hot key has been told, but hasn't read it yet
    const auto server = static_cast<pid_t>(VirtualDesktop::current().xServer().processId());
    ::kill(server, SIGSTOP);
    QCoreApplication::processEvents();
    ::kill(server, SIGCONT);
    expectItFollows();
}

TEST_F(XcbHotKeyTest, StaysThroughChangesOfTheLayout) {
    std::string expected;
    for (const char *layout : {"de", "fr", "ru", "us,ru", "us"}) {
        setLayout(QString::fromLatin1(layout));
        hands.press();
        hands.release();
        expected += "+-";
        EXPECT_TRUE(reports.await(expected)) << layout << ": " << reports.text();
    }
}

TEST_F(XcbHotKeyTest, WorksInTheSecondOfTwoLayouts) {
    setLayout(QStringLiteral("us,ru"));
    hands.user.lockGroup(1);
    hands.press();
    hands.release();
    EXPECT_TRUE(reports.await("+-")) << reports.text();
    hands.user.lockGroup(0);
    setLayout(QStringLiteral("us"));
}

TEST_F(XcbHotKeyTest, ReportsTheReleaseOfAKeyThatWasHeldThroughAChangeOfTheLayout) {
    hands.press();
    EXPECT_TRUE(waitUntil([&] { return reports.text().starts_with('+'); }));
    setLayout(QStringLiteral("de"));
    hands.release();
    EXPECT_TRUE(waitUntil([&] { return reports.text().ends_with('-'); })) << reports.text();
    EXPECT_EQ(std::ranges::count(reports.text(), '-'), 1);
    setLayout(QStringLiteral("us"));
}

/// Somebody's fingers on the three keys, for a while: pressed and let go in any order, with 5 ms
/// and more between.
void play(unsigned int count, unsigned int seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<unsigned long> pause(5, 25);
    X11Client user;
    const xcb_keycode_t space = user.key(KeySymbol::space);
    std::array modifiers = {user.key(KeySymbol::controlLeft), user.key(KeySymbol::altLeft)};
    std::array all = {modifiers[0], modifiers[1], space};
    for (unsigned int i = 0; i < count; ++i) {
        std::ranges::shuffle(modifiers, random);
        for (const xcb_keycode_t key : modifiers)
            user.pressKey(key);
        user.pressKey(space);
        QThread::msleep(pause(random));
        std::ranges::shuffle(all, random);
        for (const xcb_keycode_t key : all)
            user.releaseKey(key);
        QThread::msleep(pause(random));
    }
}

/// With nobody in front, or an editor.
class XcbHotKeyAtSpeedTest : public testing::TestWithParam<const char *> {};

INSTANTIATE_TEST_SUITE_P(InFront, XcbHotKeyAtSpeedTest,
                         testing::Values("nobody", "mousepad", "featherpad", "chromium"),
                         [](const auto &parameter) { return std::string(parameter.param); });

TEST_P(XcbHotKeyAtSpeedTest, LosesAndDoublesNoneOf300PressesAtRandomIntervals) {
    constexpr unsigned int count = 300;
    std::optional<Editor> editor;
    if (GetParam() != std::string_view("nobody"))
        editor.emplace(GetParam());
    XcbHotKey hotKey;
    Reports reports;
    ASSERT_EQ(hotKey.registerHotKey(hotKeyId, reports.handler()), 0);
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    // The user doesn't wait for the program.
    std::unique_ptr<QThread> user(QThread::create([&] { play(count, seed); }));
    user->start();
    EXPECT_TRUE(waitUntil([&] { return user->isFinished(); }, 60s));
    std::string expected;
    for (unsigned int i = 0; i < count; ++i)
        expected += "+-";
    EXPECT_TRUE(reports.await(expected)) << reports.text();
}

TEST(XcbHotKeyWithoutServer, ReportsAStatus) {
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    XcbHotKey hotKey;
    EXPECT_LT(hotKey.registerHotKey(hotKeyId, [](const HotKeyEvent &) {}), 0);
    hotKey.unregisterHotKey();
    qputenv("DISPLAY", display);
}

TEST(XcbHotKeyWithoutServer, SurvivesTheEndOfTheServerAndRegistersWithTheNext) {
    XcbHotKey hotKey;
    {
        VirtualDesktop brief(VirtualDesktop::server);
        ASSERT_EQ(hotKey.registerHotKey(hotKeyId, [](const HotKeyEvent &) {}), 0);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(hotKey.registerHotKey(hotKeyId, [](const HotKeyEvent &) {}), 0);
}

} // namespace
} // namespace lorvane
