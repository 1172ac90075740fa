#include "Views/Setup/PermissionPrompt.h"
#include "Views/Setup/SetupModel.h"

#include "PageFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

TEST(SetupModelTest, TheGuideFitsIntoTheScreen) {
    EXPECT_EQ(SetupModel::guideSize(QSize(1920, 1080)), QSize(860, 760));
    EXPECT_EQ(SetupModel::guideSize(QSize(800, 1080)), QSize(740, 760));
    EXPECT_EQ(SetupModel::guideSize(QSize(1920, 800)), QSize(860, 720));
    EXPECT_EQ(SetupModel::guideSize(std::nullopt), QSize(860, 760));
}

class SetupGuideTest : public PageFixture {};

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

TEST_F(SetupGuideTest, ItLooksAtTheGrantsEverySecond) {
    ports.permissions.microphone = 0;
    store->showSetupGuide(1);
    ASSERT_TRUE(shows(u"Waiting for your permission"_qs));
    QObject *timer = nullptr;
    for (const QWindow *guide : QGuiApplication::topLevelWindows())
        for (QObject *part : guide->findChildren<QObject *>())
            if (part->inherits("QQmlTimer"))
                timer = part;
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->property("interval").toInt(), 1000);
    for (const char *property : {"running", "repeat", "triggeredOnStart"})
        EXPECT_TRUE(timer->property(property).toBool()) << property;
    ports.permissions.microphone = 3;
    QMetaObject::invokeMethod(timer, "triggered");
    EXPECT_TRUE(shows(u"Access is enabled"_qs));
}

TEST_F(SetupGuideTest, TheWaysToAGrantAreThereWhetherItIsGivenOrNot) {
    const QStringList panels{u"Microphone"_qs, u"Speech Recognition"_qs, u"Accessibility"_qs};
    const QStringList requests{u"Allow microphone"_qs, u"Allow Speech Recognition"_qs,
                               u"Request Accessibility access"_qs};
    for (const bool isGranted : {true, false}) {
        ports.permissions.microphone = isGranted ? 3 : 2;
        ports.permissions.speech = isGranted ? 3 : 1;
        ports.permissions.accessibility = isGranted;
        for (int step = 1; step <= 3; ++step) {
            store->showSetupGuide(step);
            const QString request = isGranted ? u"Already allowed"_qs : requests[step - 1];
            EXPECT_EQ(isEnabled(request), !isGranted) << request.toStdString();
            EXPECT_TRUE(
                shows(isGranted ? u"Access is enabled"_qs : u"Waiting for your permission"_qs));
            EXPECT_TRUE(isEnabled(u"Check again"_qs));

            const QString open = u"Open %1 settings"_qs.arg(panels[step - 1]);
            EXPECT_TRUE(isEnabled(open)) << open.toStdString();
            ports.workspace.openedAddresses.clear();
            activate(open);
            EXPECT_EQ(ports.workspace.openedAddresses,
                      QStringList{SystemIntegration::privacyAddress(
                          static_cast<SystemIntegration::PrivacyPane>(step - 1))});

            ports.workspace.shownFiles.clear();
            ASSERT_TRUE(activate(u"Show this app in Finder"_qs));
            EXPECT_EQ(ports.workspace.shownFiles,
                      QStringList{QCoreApplication::applicationFilePath()});
        }
    }
    store->showSetupGuide(0);
    EXPECT_FALSE(shows(u"Show this app in Finder"_qs));
    store->showSetupGuide(4);
    EXPECT_FALSE(shows(u"Show this app in Finder"_qs));
}

TEST_F(SetupGuideTest, EveryStepHasItsTextsWithAndWithoutItsGrant) {
    const QString rebuilt =
        u"After a development rebuild, macOS may need you to allow this copy again. If access still fails, switch Lorvane off and back on, then reopen it if macOS asks."_qs;
    const auto refused = [](const QString &panel) {
        return u"If you previously chose Don’t Allow, open System Settings → Privacy & Security → "_qs +
               panel + u" and turn on Lorvane. If it’s missing, request access here first."_qs;
    };
    const auto illustration = [](const QString &panel) {
        return u"System Settings · illustrated guide, Privacy & Security, "_qs + panel +
               u", Lorvane, ON, Turn on the switch beside Lorvane., Example screen — labels and appearance can vary by macOS version."_qs;
    };
    const QList<QStringList> pages{
        {u"Lorvane app icon"_qs, u"A few minutes. A lot less typing."_qs,
         u"Let’s set up your microphone, Apple Speech, and pasting at your cursor."_qs, u"1"_qs,
         u"Allow your microphone"_qs, u"Capture your voice only when you start a recording."_qs,
         u"2"_qs, u"Allow Speech Recognition"_qs,
         u"Turn your recording into text with Apple Speech."_qs, u"3"_qs,
         u"Enable Accessibility for pasting"_qs,
         u"Let Lorvane insert text into the field you chose."_qs,
         u"You choose each permission in a macOS prompt or System Settings. This guide doesn’t start a recording."_qs},
        {u"Give your voice a way in."_qs,
         u"Click Allow microphone below, then choose Allow in the macOS prompt."_qs,
         illustration(u"Microphone"_qs), refused(u"Microphone"_qs), rebuilt,
         u"Open Microphone settings"_qs},
        {u"Let Apple turn speech into text."_qs,
         u"Click Allow Speech Recognition, then choose Allow in the macOS prompt. Apple may process audio online when on-device recognition is unavailable."_qs,
         illustration(u"Speech Recognition"_qs), refused(u"Speech Recognition"_qs), rebuilt,
         u"Open Speech Recognition settings"_qs},
        {u"Put the words at your cursor."_qs,
         u"Accessibility access lets Lorvane restore your selected text field and request a paste. It’s optional if you prefer to copy and paste yourself."_qs,
         illustration(u"Accessibility"_qs),
         u"Open System Settings → Privacy & Security → Accessibility. On newer macOS versions this may be called Device Control and Data Access. Turn on Lorvane and authenticate if macOS asks."_qs,
         u"If Lorvane is missing, use the + button to add this app. Keep the app in the same location; if you move or rebuild it, macOS may ask you to allow it again."_qs,
         u"Open Accessibility settings"_qs},
        {u"Hold. Speak. Release."_qs,
         u"Try dictating into the practice field below, or use any text field in another app."_qs,
         u"Microphone"_qs, u"Speech"_qs, u"Pasting"_qs, u"1"_qs, u"Click in a text field"_qs,
         u"This is where your words will go."_qs, u"2"_qs,
         u"Hold Control + Option + Space and speak"_qs,
         u"A mini waveform and timer show that you’re recording. Keep holding through pauses."_qs,
         u"3"_qs, u"Release the shortcut"_qs,
         u"Wait for transcription. Dictionary substitutions are applied before the final text is saved and pasted."_qs,
         u"Practice dictation text field"_qs,
         u"Click inside the box before holding the shortcut. Without paste access, use ⌘V after transcription. You can also click the microphone on Home to start and finish a recording."_qs},
    };
    const QStringList requests{{},
                               u"Allow microphone"_qs,
                               u"Allow Speech Recognition"_qs,
                               u"Request Accessibility access"_qs,
                               {}};
    const auto expected = [&](int step, bool isGranted) {
        QStringList texts{u"Lorvane app icon"_qs, u"LORVANE · GETTING STARTED"_qs,
                          u"%1 of 5"_qs.arg(step + 1)};
        texts += SetupModel::steps() + pages[step];
        if (!requests[step].isEmpty()) {
            const QString settings = texts.takeLast();
            texts += isGranted ? QStringList{u"Access is enabled"_qs, u"Check again"_qs,
                                             u"Already allowed (out)"_qs}
                               : QStringList{u"Waiting for your permission"_qs, u"Check again"_qs,
                                             requests[step]};
            texts += {settings, u"Show this app in Finder"_qs};
        }
        texts += u"Set up later"_qs;
        if (step > 0)
            texts += u"Back"_qs;
        texts += step == 4 ? u"Start using Lorvane"_qs : u"Continue"_qs;
        return texts +
               QStringList{u"Reopen this walkthrough anytime in Settings → Open setup guide."_qs};
    };
    for (const bool isGranted : {true, false}) {
        ports.permissions.microphone = isGranted ? 3 : 0;
        ports.permissions.speech = isGranted ? 3 : 0;
        ports.permissions.accessibility = isGranted;
        for (int step = 0; step < 5; ++step) {
            store->showSetupGuide(step);
            EXPECT_EQ(sheet(), expected(step, isGranted));
            QAccessibleInterface *current = find(SetupModel::steps().at(step));
            ASSERT_NE(current, nullptr);
            EXPECT_TRUE(current->state().selected);
        }
    }
}

TEST_F(SetupGuideTest, ThePracticeTellsEachGrant) {
    store->showSetupGuide(4);
    const auto grants = [] {
        QStringList told;
        for (const QString &name : {u"Microphone"_qs, u"Speech"_qs, u"Pasting"_qs})
            told.append(find(name, QAccessible::StaticText, 1) // after that of the step bar

                            ->text(QAccessible::Description));
        return told;
    };
    const QString yes = u"Allowed"_qs;
    const QString no = u"Not allowed"_qs;
    EXPECT_EQ(grants(), (QStringList{yes, yes, yes}));
    ports.permissions.microphone = 0;
    store->refreshPermissions();
    EXPECT_EQ(grants(), (QStringList{no, yes, yes}));
    ports.permissions.microphone = 3;
    ports.permissions.speech = 1;
    store->refreshPermissions();
    EXPECT_EQ(grants(), (QStringList{yes, no, yes}));
    ports.permissions.speech = 3;
    ports.permissions.accessibility = false;
    store->refreshPermissions();
    EXPECT_EQ(grants(), (QStringList{yes, yes, no}));
}

TEST_F(SetupGuideTest, ThePracticeFieldKeepsItsTextUntilTheGuideEnds) {
    const auto field = [] {
        return find(u"Practice dictation text field"_qs, QAccessible::EditableText);
    };
    store->showSetupGuide(4);
    ASSERT_NE(field(), nullptr);
    field()->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_W, u"words"_qs);
    EXPECT_EQ(field()->text(QAccessible::Value), u"words"_qs);
    ASSERT_TRUE(activate(u"Back"_qs));
    ASSERT_TRUE(activate(u"Continue"_qs));
    EXPECT_EQ(field()->text(QAccessible::Value), u"words"_qs);

    ASSERT_TRUE(activate(u"Start using Lorvane"_qs));
    store->showSetupGuide(4);
    EXPECT_EQ(field()->text(QAccessible::Value), QString());
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
