#include "Services/SystemIntegration.h"

#include "Fakes/FakePorts.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

const RunningApplication editor{42, 1, 100};
const RunningApplication browser{43, 2, 101};
const AccessibleElement field{u":1.5"_s, u"/field"_s};
const AccessibleElement otherField{u":1.5"_s, u"/other"_s};

using Destination = SystemIntegration::PasteDestination;
using Element = std::optional<AccessibleElement>;

Async<Element> giving(Element element) { co_return element; }

Destination at(const RunningApplication &app, const Element &element) {
    return {app, element ? Task<Element>::run(giving(element)) : Task<Element>()};
}

Element elementOf(const Destination &destination) {
    return destination.focusedElement.operator co_await().await_resume();
}

class SystemIntegrationTest : public testing::Test {
protected:
    FakePorts ports;
    SystemIntegration integration{ports};
    std::optional<bool> pasted;
    Task<> task;

    void SetUp() override {
        ports.workspace.front = editor;
        ports.accessibility.focused[editor.processId] = field;
    }

    Async<> run(std::optional<Destination> destination) {
        pasted = co_await integration.paste(u"Hello."_s, destination);
    }

    void paste(const std::optional<Destination> &destination) {
        task = Task<>::run(run(destination));
    }

    void expectGaveUp() {
        clock().advance(1s);
        EXPECT_EQ(pasted, false);
        EXPECT_EQ(ports.keyboard.pasteCount, 0);
        EXPECT_EQ(ports.pasteboard.text, u"Hello."_s) << "the text isn't on the pasteboard";
    }

    FakeClock &clock() { return ports.clock; }
};

// Capturing

TEST_F(SystemIntegrationTest, CapturesTheFrontApplicationAndItsFocusedElement) {
    const auto destination = integration.captureDestination(std::nullopt);
    ASSERT_TRUE(destination);
    EXPECT_EQ(destination->app, editor);
    EXPECT_EQ(elementOf(*destination), field);
}

TEST_F(SystemIntegrationTest, OwnApplicationIsCapturedOnlyWhenAllowed) {
    const RunningApplication own{QCoreApplication::applicationPid(), 9, 9};
    ports.workspace.front = own;
    EXPECT_EQ(integration.captureDestination(editor, true)->app, own);
    EXPECT_EQ(integration.captureDestination(editor, false)->app, editor);
    EXPECT_EQ(elementOf(*integration.captureDestination(editor, false)), field);
    EXPECT_FALSE(integration.captureDestination(std::nullopt, false));
}

TEST_F(SystemIntegrationTest, FallbackStandsInWhenNothingIsInFront) {
    ports.workspace.front = std::nullopt;
    EXPECT_EQ(integration.captureDestination(browser, true)->app, browser);
}

TEST_F(SystemIntegrationTest, TerminatedCandidateIsNotCaptured) {
    ports.workspace.terminated.insert(editor.processId);
    EXPECT_FALSE(integration.captureDestination(std::nullopt));
}

TEST_F(SystemIntegrationTest, CaptureWithoutTheGrantAsksForNoElement) {
    ports.permissions.accessibility = false;
    const auto destination = integration.captureDestination(std::nullopt);
    ASSERT_TRUE(destination);
    EXPECT_FALSE(destination->focusedElement);
    EXPECT_EQ(ports.accessibility.focusedElementCount, 0);
}

// Pasting

TEST_F(SystemIntegrationTest, TargetInFrontIsNotActivatedButWaitedForAllTheSame) {
    paste(at(editor, field));
    EXPECT_EQ(ports.log, QStringList{u"setText"_s});
    clock().advance(180ms - 1ns);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    clock().advance(1ns);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, TargetBehindIsActivatedFirst) {
    ports.workspace.front = browser;
    paste(at(editor, field));
    clock().advance(180ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"activate 42"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, TargetIsActivatedWhenNothingIsInFront) {
    ports.workspace.front = std::nullopt;
    paste(at(editor, field));
    clock().advance(180ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"activate 42"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, TheKeyIsMeantForTheWindowThatIsInFrontThen) {
    const RunningApplication otherWindow{editor.processId, 7, editor.startTime};
    paste(at(editor, field));
    ports.workspace.bringForward(otherWindow);
    clock().advance(180ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.keyboard.lastFront, otherWindow);
}

TEST_F(SystemIntegrationTest, FocusThatNothingHoldsIsRestoredToo) {
    ports.accessibility.focused.remove(editor.processId);
    ports.accessibility.onSetFocused = [this](const AccessibleElement &element) {
        ports.accessibility.focused[editor.processId] = element;
    };
    paste(at(editor, field));
    clock().advance(260ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"setFocused :1.5/field"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, TargetCapturedWithoutTheGrantIsPastedIntoWithIt) {
    ports.permissions.accessibility = false;
    const auto destination = integration.captureDestination(std::nullopt);
    ports.permissions.accessibility = true;
    ports.accessibility.focused[editor.processId] = otherField;
    paste(destination);
    clock().advance(180ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, LostFocusIsRestoredWithASecondWait) {
    ports.accessibility.focused[editor.processId] = otherField;
    paste(at(editor, field));
    clock().advance(260ms - 1ns);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    clock().advance(1ns);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.log, QStringList({u"setText"_s, u"setFocused :1.5/field"_s, u"postPaste"_s}));
}

TEST_F(SystemIntegrationTest, DestinationWithoutElementPastesIntoWhateverHasTheFocus) {
    ports.accessibility.focused.clear();
    paste(at(editor, std::nullopt));
    clock().advance(180ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.accessibility.focusedElementCount, 0);
}

/// What an application says that takes its time.
Async<Element> answeringLate(Clock &clock, Element element) {
    co_await sleep(clock, 200ms);
    co_return element;
}

TEST_F(SystemIntegrationTest, AnswerThatIsStillOnItsWayIsWaitedFor) {
    paste(Destination{editor, Task<Element>::run(answeringLate(clock(), field))});
    clock().advance(199ms);
    EXPECT_FALSE(pasted);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    clock().advance(1ms);
    EXPECT_EQ(pasted, true);
    EXPECT_EQ(ports.accessibility.elementsSet, QList<AccessibleElement>());
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheUserLeavesBeforeTheAnswer) {
    paste(Destination{editor, Task<Element>::run(answeringLate(clock(), otherField))});
    clock().advance(190ms);
    ports.workspace.front = browser;
    expectGaveUp();
    EXPECT_EQ(ports.accessibility.elementsSet, QList<AccessibleElement>());
}

TEST_F(SystemIntegrationTest, GivesUpWhenItIsCancelledBeforeTheAnswer) {
    paste(Destination{editor, Task<Element>::run(answeringLate(clock(), field))});
    clock().advance(190ms);
    task.cancel();
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWithoutTheGrantAndActivatesNothing) {
    ports.permissions.accessibility = false;
    ports.workspace.front = browser;
    paste(at(editor, field));
    expectGaveUp();
    EXPECT_TRUE(ports.workspace.activated.isEmpty());
}

TEST_F(SystemIntegrationTest, GivesUpWithoutDestination) {
    paste(std::nullopt);
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheTargetHasQuit) {
    ports.workspace.front = browser;
    ports.workspace.terminated.insert(editor.processId);
    paste(at(editor, field));
    expectGaveUp();
    EXPECT_TRUE(ports.workspace.activated.isEmpty());
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheActivationIsRefused) {
    ports.workspace.front = browser;
    ports.workspace.canActivate = false;
    paste(at(editor, field));
    EXPECT_EQ(pasted, false) << "it waited";
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheActivationTakesNoEffect) {
    ports.workspace.front = browser;
    ports.workspace.activationTakesEffect = false;
    paste(at(editor, field));
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheUserSwitchesAwayDuringTheFirstWait) {
    paste(at(editor, field));
    clock().advance(100ms);
    ports.workspace.bringForward(browser);
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenNothingIsInFrontAfterTheFirstWait) {
    paste(at(editor, field));
    ports.workspace.front = std::nullopt;
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheFieldRefusesTheFocus) {
    ports.accessibility.focused[editor.processId] = otherField;
    ports.accessibility.canSetFocus = false;
    paste(at(editor, field));
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheUserSwitchesAwayDuringTheSecondWait) {
    ports.accessibility.focused[editor.processId] = otherField;
    paste(at(editor, field));
    clock().advance(200ms);
    ports.workspace.bringForward(browser);
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenAnotherElementHasTheFocusInTheEnd) {
    ports.accessibility.focused[editor.processId] = otherField;
    ports.accessibility.focusTakesEffect = false;
    paste(at(editor, field));
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenNoElementHasTheFocusInTheEnd) {
    ports.accessibility.focused.clear();
    paste(at(editor, field));
    expectGaveUp();
    EXPECT_EQ(ports.accessibility.elementsSet, QList{field});
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheUserSwitchesAwayWhileTheFocusIsRead) {
    ports.accessibility.onRead = [this] { ports.workspace.bringForward(browser); };
    paste(at(editor, field));
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, GivesUpWhenTheKeyCannotBePosted) {
    ports.keyboard.canPost = false;
    paste(at(editor, field));
    expectGaveUp();
}

TEST_F(SystemIntegrationTest, CancellationDuringEitherWaitPostsNoKey) {
    for (const auto when : {100ms, 200ms}) {
        ports.accessibility.focused[editor.processId] = otherField;
        pasted.reset();
        paste(at(editor, field));
        clock().advance(when);
        task.cancel();
        expectGaveUp();
    }
}

TEST_F(SystemIntegrationTest, CancelledBeforehandItOnlyCopies) {
    task = Task<>::post(clock(), run(at(editor, field)));
    task.cancel();
    clock().runUntilIdle();
    EXPECT_EQ(pasted, false);
    EXPECT_EQ(ports.log, QStringList{u"setText"_s});
}

// Links

TEST_F(SystemIntegrationTest, TheProgramItselfIsShownInTheFileManager) {
    integration.showApplication();
    EXPECT_EQ(ports.workspace.shownFiles, QStringList{QCoreApplication::applicationFilePath()});
}

TEST_F(SystemIntegrationTest, PrivacyPagesAreOpenedByTheirExactAddress) {
    using Pane = SystemIntegration::PrivacyPane;
    for (const auto pane : {Pane::microphone, Pane::speech, Pane::accessibility})
        integration.openPrivacySettings(pane);
    const QString prefix = u"x-apple.systempreferences:com.apple.preference.security?"_s;
    EXPECT_EQ(ports.workspace.openedAddresses, QStringList({prefix + u"Privacy_Microphone"_s,
                                                            prefix + u"Privacy_SpeechRecognition"_s,
                                                            prefix + u"Privacy_Accessibility"_s}));
}

} // namespace
} // namespace lorvane
