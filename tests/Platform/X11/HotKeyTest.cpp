#include "Platform/HotKey.h"

#include "Fakes/FakeHotKey.h"
#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

#include <QThread>

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <random>
#include <string>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

[[maybe_unused]] const bool inDesktop = VirtualDesktop::use(VirtualDesktop::server);

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

TEST_F(XcbHotKeyTest, TheLockKeysDoNotMatter) {
    const std::vector<std::vector<xcb_keysym_t>> locks = {
        {KeySymbol::capsLock}, {KeySymbol::numLock}, {KeySymbol::capsLock, KeySymbol::numLock}};
    std::string expected;
    for (const auto &set : locks) {
        for (const xcb_keysym_t lock : set)
            hands.user.tap(lock);
        hands.press();
        hands.release();
        expected += "+-";
        EXPECT_TRUE(reports.await(expected)) << reports.text();
        for (const xcb_keysym_t lock : set)
            hands.user.tap(lock);
    }
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

TEST_F(XcbHotKeyTest, FollowsTheSpaceKeyToAnotherPlace) {
    const xcb_keycode_t space = hands.user.key(KeySymbol::space);
    constexpr xcb_keycode_t other = 96; // a function key
    hands.user.map(other, KeySymbol::space);
    hands.user.map(space, 0);
    X11Client rival; // finds the old place free when the hot key has followed
    EXPECT_TRUE(
        waitUntil([&] { return rival.grab(space, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1) == 0; }));

    hands.user.press(KeySymbol::controlLeft);
    hands.user.press(KeySymbol::altLeft);
    hands.user.pressKey(other);
    hands.user.releaseKey(other);
    hands.user.release(KeySymbol::altLeft);
    hands.user.release(KeySymbol::controlLeft);
    EXPECT_TRUE(reports.await("+-")) << reports.text();

    hands.user.map(space, KeySymbol::space);
    hands.user.map(other, 0);
}

TEST_F(XcbHotKeyTest, LosesAndDoublesNoneOfFiftyPressesAtRandomIntervals) {
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    std::uniform_int_distribution<unsigned int> interval(0, 60);
    // The user doesn't wait for the program.
    std::unique_ptr<QThread> user(QThread::create([&] {
        Hands hands2;
        hands2.user.press(KeySymbol::controlLeft);
        hands2.user.press(KeySymbol::altLeft);
        for (int i = 0; i < 50; ++i) {
            hands2.user.press(KeySymbol::space);
            QThread::msleep(interval(random));
            hands2.user.release(KeySymbol::space);
            QThread::msleep(interval(random));
        }
        hands2.user.release(KeySymbol::altLeft);
        hands2.user.release(KeySymbol::controlLeft);
    }));
    user->start();
    EXPECT_TRUE(waitUntil([&] { return user->isFinished(); }, 30s));
    std::string expected;
    for (int i = 0; i < 50; ++i)
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
