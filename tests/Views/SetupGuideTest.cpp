#include "Views/Setup/PermissionPrompt.h"
#include "Views/Setup/SetupModel.h"
#include "Views/Shell/MainWindow.h"

#include "ViewFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

TEST(SetupModelTest, TheGuideFitsIntoTheScreen) {
    EXPECT_EQ(SetupModel::guideSize(QSize(1920, 1080)), QSize(860, 760));
    EXPECT_EQ(SetupModel::guideSize(QSize(800, 1080)), QSize(740, 760));
    EXPECT_EQ(SetupModel::guideSize(QSize(1920, 800)), QSize(860, 720));
    EXPECT_EQ(SetupModel::guideSize(std::nullopt), QSize(860, 760));
}

class SetupGuideTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        window = std::make_unique<MainWindow>(engine, *store);
    }
    void TearDown() override {
        window.reset();
        ViewFixture::TearDown();
    }

    std::unique_ptr<MainWindow> window;
};

TEST_F(SetupGuideTest, ItOpensTheWindowAndGoesThroughTheStepsAndEnds) {
    EXPECT_FALSE(window->isOpen());
    store->showSetupGuide();
    EXPECT_TRUE(window->isOpen());
    EXPECT_TRUE(shows(u"A few minutes. A lot less typing."_qs));
    EXPECT_TRUE(shows(u"1 of 5"_qs));
    EXPECT_FALSE(button(u"Back"_qs));

    const QStringList headings{u"Give your voice a way in."_qs,
                               u"Let Apple turn speech into text."_qs,
                               u"Put the words at your cursor."_qs, u"Hold. Speak. Release."_qs};
    for (int step = 1; step <= 4; ++step) {
        ASSERT_TRUE(activate(u"Continue"_qs));
        EXPECT_EQ(store->setupStepNumber(), step);
        EXPECT_TRUE(shows(headings[step - 1]));
        EXPECT_TRUE(shows(u"%1 of 5"_qs.arg(step + 1)));
    }
    EXPECT_FALSE(button(u"Continue"_qs));
    ASSERT_TRUE(activate(u"Back"_qs));
    EXPECT_EQ(store->setupStepNumber(), 3);
    ASSERT_TRUE(activate(u"Continue"_qs));
    ASSERT_TRUE(activate(u"Start using Lorvane"_qs));
    EXPECT_FALSE(store->isSetupPresented());
    EXPECT_FALSE(shows(u"LORVANE · GETTING STARTED"_qs));
}

TEST_F(SetupGuideTest, SetUpLaterEndsItFromAnyStep) {
    store->showSetupGuide(2);
    ASSERT_TRUE(activate(u"Set up later"_qs));
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(SetupGuideTest, AMissingGrantCanBeAskedForAndAGivenOneNot) {
    ports.permissions.microphone = 0;
    store->showSetupGuide(1);
    EXPECT_TRUE(shows(u"Waiting for your permission"_qs));
    EXPECT_TRUE(isEnabled(u"Allow microphone"_qs));

    ASSERT_TRUE(activate(u"Allow microphone"_qs));
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.microphonePromptCount, 1);
    EXPECT_TRUE(shows(u"Access is enabled"_qs));
    EXPECT_FALSE(isEnabled(u"Already allowed"_qs));
}

TEST_F(SetupGuideTest, EachStepAsksForItsOwnGrant) {
    ports.permissions.speech = 0;
    ports.permissions.accessibility = false;
    store->showSetupGuide(2);
    ASSERT_TRUE(activate(u"Allow Speech Recognition"_qs));
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.speechPromptCount, 1);
    ASSERT_TRUE(activate(u"Continue"_qs));
    ASSERT_TRUE(activate(u"Request Accessibility access"_qs));
    EXPECT_EQ(ports.permissions.accessibilityRequestCount, 1);
}

TEST_F(SetupGuideTest, CheckAgainReadsTheGrantsAnew) {
    ports.permissions.microphone = 0;
    store->showSetupGuide(1);
    ports.permissions.microphone = 3;
    ASSERT_TRUE(activate(u"Check again"_qs));
    EXPECT_TRUE(shows(u"Access is enabled"_qs));
}

TEST_F(SetupGuideTest, TheLastStepHasAFieldToPractiseIn) {
    store->showSetupGuide(4);
    QAccessibleInterface *field = find(u"Practice dictation text field"_qs);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->role(), QAccessible::EditableText);
}

class PermissionPromptTest : public ViewFixture {
protected:
    static Async<> ask(PermissionPrompt &prompt, std::optional<bool> &answer) {
        const bool isAllowed = co_await prompt.ask(u"May it?"_qs);
        answer = isAllowed;
    }

    PermissionPrompt prompt{engine, ports.clock};
    std::optional<bool> answer;
};

TEST_F(PermissionPromptTest, AllowIsTrue) {
    const Task<> task = Task<>::run(ask(prompt, answer));
    EXPECT_TRUE(shows(u"May it?"_qs));
    ASSERT_TRUE(activate(u"Allow"_qs));
    clock().runUntilIdle();
    EXPECT_EQ(answer, true);
    EXPECT_FALSE(shows(u"May it?"_qs));
}

TEST_F(PermissionPromptTest, DontAllowIsFalse) {
    const Task<> task = Task<>::run(ask(prompt, answer));
    ASSERT_TRUE(activate(u"Don’t Allow"_qs));
    clock().runUntilIdle();
    EXPECT_EQ(answer, false);
}

TEST_F(PermissionPromptTest, AClosedWindowIsFalse) {
    const Task<> task = Task<>::run(ask(prompt, answer));
    for (QWindow *window : QGuiApplication::topLevelWindows())
        window->close();
    clock().runUntilIdle();
    EXPECT_EQ(answer, false);
}

} // namespace
} // namespace lorvane
