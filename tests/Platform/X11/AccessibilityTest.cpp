#include "Platform/Accessibility.h"

#include "Fakes/FakeAccessibility.h"
#include "Platform/Linux/AtSpiAccessibility.h"
#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/X11/Awaiting.h"
#include "Platform/X11/Editor.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

[[maybe_unused]] const bool inDesktop =
    VirtualDesktop::use(VirtualDesktop::windowManager | VirtualDesktop::accessibilityBus);

std::optional<AccessibleElement> awaitElement(Accessibility &accessibility,
                                              const RunningApplication &application) {
    waitUntil([&] { return await(accessibility.focusedElement(application)).has_value(); }, 10s);
    return await(accessibility.focusedElement(application));
}

/// The same promises for the fake and for real editors.
struct FakeBench {
    FakeAccessibility accessibility;
    RunningApplication application() const { return {42, 1, 1}; }
    void goToOtherField() {
        accessibility.focused[42] = {QStringLiteral(":1.1"), QStringLiteral("/field")};
    }
    FakeBench() { accessibility.focused[42] = {QStringLiteral(":1.1"), QStringLiteral("/text")}; }
};

struct GtkBench {
    AtSpiAccessibility accessibility;
    Editor editor{"mousepad"};
    RunningApplication application() const { return editor.application(); }
    void goToOtherField() { editor.goToOtherField(); }
};

struct QtBench {
    AtSpiAccessibility accessibility;
    Editor editor{"featherpad"};
    RunningApplication application() const { return editor.application(); }
    void goToOtherField() { editor.goToOtherField(); }
};

template <class Bench>
class AccessibilityContract : public testing::Test {
protected:
    Bench bench;
};

using Benches = testing::Types<FakeBench, GtkBench, QtBench>;
TYPED_TEST_SUITE(AccessibilityContract, Benches);

TYPED_TEST(AccessibilityContract, TellsTheFocusedElementAndGivesTheFocusBack) {
    Accessibility &accessibility = this->bench.accessibility;
    const auto application = this->bench.application();
    const auto text = awaitElement(accessibility, application);
    ASSERT_TRUE(text);
    EXPECT_EQ(await(accessibility.focusedElement(application)), text);

    this->bench.goToOtherField();
    EXPECT_TRUE(waitUntil([&] {
        const auto element = await(accessibility.focusedElement(application));
        return element && element != text;
    }));

    EXPECT_TRUE(await(accessibility.setFocused(*text)));
    EXPECT_TRUE(
        waitUntil([&] { return await(accessibility.focusedElement(application)) == text; }, 1s));
}

TYPED_TEST(AccessibilityContract, KnowsNoElementOfAnotherApplication) {
    ASSERT_TRUE(awaitElement(this->bench.accessibility, this->bench.application()));
    EXPECT_FALSE(await(this->bench.accessibility.focusedElement({1, 0, 0})));
}

/// With an editor of GTK and one of Qt.
class AtSpiAccessibilityTest : public testing::TestWithParam<const char *> {};

INSTANTIATE_TEST_SUITE_P(Editors, AtSpiAccessibilityTest, testing::Values("mousepad", "featherpad"),
                         [](const auto &parameter) { return std::string(parameter.param); });

TEST_P(AtSpiAccessibilityTest, KnowsTheElementWhileTheShortcutIsHeldDown) {
    AtSpiAccessibility accessibility;
    const Editor editor(GetParam());
    const auto text = awaitElement(accessibility, editor.application());
    ASSERT_TRUE(text);

    XcbHotKey hotKey;
    X11Client user;
    std::vector<Task<std::optional<AccessibleElement>>> atPress;
    ASSERT_EQ(
        hotKey.registerHotKey({1, 1},
                              [&](const HotKeyEvent &event) {
                                  if (event.isPressed)
                                      atPress.push_back(Task<std::optional<AccessibleElement>>::run(
                                          accessibility.focusedElement(editor.application())));
                              }),
        0);
    for (unsigned int i = 1; i <= 10; ++i) {
        user.press(KeySymbol::controlLeft);
        user.press(KeySymbol::altLeft);
        user.press(KeySymbol::space);
        ASSERT_TRUE(waitUntil([&] { return atPress.size() >= i && atPress.back().isDone(); }));
        EXPECT_EQ(atPress.back().operator co_await().await_resume(), text);
        // By now the editor believes that it has lost the focus.
        EXPECT_FALSE(waitUntil(
            [&] { return await(accessibility.focusedElement(editor.application())) != text; },
            100ms));
        user.release(KeySymbol::space);
        user.release(KeySymbol::altLeft);
        user.release(KeySymbol::controlLeft);
    }
}

TEST_P(AtSpiAccessibilityTest, FindsTheFocusThatWasThereBeforeIt) {
    const Editor editor(GetParam());
    {
        AtSpiAccessibility witness;
        ASSERT_TRUE(awaitElement(witness, editor.application()));
    }
    AtSpiAccessibility accessibility;
    EXPECT_TRUE(awaitElement(accessibility, editor.application()));
}

TEST_P(AtSpiAccessibilityTest, KnowsTheElementOfAnApplicationInTheBackground) {
    AtSpiAccessibility accessibility;
    const Editor editor(GetParam());
    const auto text = awaitElement(accessibility, editor.application());
    ASSERT_TRUE(text);
    X11Client user;
    ASSERT_TRUE(user.bringForward(user.showWindow(0)));
    EXPECT_FALSE(waitUntil(
        [&] { return await(accessibility.focusedElement(editor.application())) != text; }, 300ms));
}

TEST_P(AtSpiAccessibilityTest, AnApplicationThatHangsHoldsNobodyUp) {
    AtSpiAccessibility accessibility;
    const Editor editor(GetParam());
    const auto text = awaitElement(accessibility, editor.application());
    ASSERT_TRUE(text);
    ::kill(editor.processId(), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    const auto reading = Task<std::optional<AccessibleElement>>::run(
        accessibility.focusedElement(editor.application()));
    const auto writing = Task<bool>::run(accessibility.setFocused(*text));
    EXPECT_LT(timer.elapsed(), 50) << "the calls themselves wait";
    ASSERT_TRUE(waitUntil([&] { return reading.isDone(); }));
    EXPECT_FALSE(reading.operator co_await().await_resume());
    ASSERT_TRUE(waitUntil([&] { return writing.isDone(); }));
    EXPECT_FALSE(writing.operator co_await().await_resume());
    EXPECT_LT(timer.elapsed(), 1000) << "as much as twice the limit, on a busy machine";
    ::kill(editor.processId(), SIGCONT);
    EXPECT_TRUE(waitUntil(
        [&] { return await(accessibility.focusedElement(editor.application())) == text; }));
}

TEST_P(AtSpiAccessibilityTest, ForgetsAnApplicationThatHasEnded) {
    AtSpiAccessibility accessibility;
    Editor editor(GetParam());
    const auto text = awaitElement(accessibility, editor.application());
    ASSERT_TRUE(text);
    editor.end();
    EXPECT_FALSE(await(accessibility.focusedElement(editor.application())));
    EXPECT_FALSE(await(accessibility.setFocused(*text)));
}

TEST(AtSpiAccessibilityAlone, DoesNotWaitForThisProcess) {
    AtSpiAccessibility accessibility;
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(await(accessibility.focusedElement({::getpid(), 0, 0})));
    EXPECT_LT(timer.elapsed(), 20);
}

TEST(AtSpiAccessibilityAlone, FindsTheBusAgainWhenItWasStartedAnew) {
    AtSpiAccessibility accessibility;
    {
        const Editor editor("mousepad");
        ASSERT_TRUE(awaitElement(accessibility, editor.application()));
        VirtualDesktop::current().endAccessibilityBus();
        // The bus itself goes a moment after what launched it.
        ASSERT_TRUE(waitUntil([&] {
            return !await(accessibility.focusedElement(editor.application())).has_value();
        }));
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(await(accessibility.focusedElement(editor.application())));
        EXPECT_FALSE(
            await(accessibility.setFocused({QStringLiteral(":1.1"), QStringLiteral("/text")})));
        EXPECT_LT(timer.elapsed(), 100);
    }
    VirtualDesktop::current().startAccessibilityBus();
    const Editor editor("mousepad");
    EXPECT_TRUE(awaitElement(accessibility, editor.application()));
}

} // namespace
} // namespace lorvane
