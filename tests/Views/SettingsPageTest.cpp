#include "Views/Settings/SettingsModel.h"

#include "PageFixture.h"

#include <QFile>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

const QString picker = u"Recognition language"_qs;
const QStringList languages{u"English (Australia)"_qs,
                            u"English (United States)"_qs,
                            u"English (United Kingdom)"_qs,
                            u"Français"_qs,
                            u"Deutsch"_qs,
                            u"Español"_qs,
                            u"日本語"_qs};
const QStringList identifiers{u"en-AU"_qs, u"en-US"_qs, u"en-GB"_qs, u"fr-FR"_qs,
                              u"de-DE"_qs, u"es-ES"_qs, u"ja-JP"_qs};

class SettingsPageTest : public PageFixture {
protected:
    void open() { openPage(u"Settings"_qs); }

    /// All that the page shows. A dictation takes some buttons out of use.
    static QStringList wholePage(bool isGranted, bool isLocked, bool hasRecording) {
        const QString out = isLocked ? u" (out)"_qs : QString();
        QStringList texts{
            u"MAKE YOURSELF AT HOME"_qs,
            u"Settings"_qs,
            u"A few thoughtful defaults. Adjust them to fit the way you work."_qs,
            u"DICTATION"_qs,
            u"Getting started"_qs,
            u"Review permissions, visual instructions and hold-to-talk practice."_qs,
            u"Open setup guide"_qs + out,
            u"Recording mini window"_qs,
            u"A floating waveform and timer appear while you dictate, without moving your cursor."_qs,
            u"Preview mini window"_qs + out,
            u"Recognition language"_qs,
            u"Choose the language you’ll speak."_qs,
            u"Recognition language"_qs,
            u"English (Australia)"_qs,
            u"Smart punctuation"_qs,
            u"Capitalize the opening letter and add an ending period when needed."_qs,
            u"Smart punctuation"_qs,
            u"Remove filler words"_qs,
            u"Clean up common fillers such as “um” and “uh”."_qs,
            u"Remove filler words"_qs,
            u"Paste button recordings"_qs,
            u"Also paste recordings started by clicking. Hold-to-talk always pastes; Accessibility access is required."_qs,
            u"Paste button recordings"_qs,
            u"SHORTCUT & PERMISSIONS"_qs,
            u"Microphone"_qs,
            isGranted ? u"Allowed. Voice recording is available."_qs
                      : u"Access is needed before a recording can start."_qs,
            u"Set up microphone"_qs + out,
            u"Hold to talk"_qs,
            u"Hold to record. Release to transcribe and paste at your cursor."_qs,
            u"⌃  ⌥  Space"_qs,
            u"Speech recognition"_qs,
            isGranted ? u"Allowed"_qs : u"Denied — enable in System Settings"_qs,
            u"Refresh"_qs,
            u"Accessibility"_qs,
            isGranted ? u"Enabled. Automatic insertion is available."_qs
                      : u"Needed only to paste into another app automatically."_qs,
            isGranted ? u"Enabled"_qs : u"Grant access"_qs,
            u"YOUR DATA"_qs,
            u"Personal by design"_qs,
            u"Your history, dictionary, snippets, and scratchpad are stored locally in this Mac’s Application Support folder. Lorvane does not require an account."_qs,
            u"Recognition uses Apple Speech. On-device recognition is used when supported; otherwise Apple may process speech online. Availability depends on the language, device, and system settings."_qs,
            u"Audio is captured locally for the entire recording and removed after successful transcription. If transcription fails or the app quits while processing, the original audio is kept in Application Support/Lorvane/Recovery so your words can be recovered."_qs};
        if (hasRecording)
            texts.append(u"Show saved recording"_qs);
        return texts +
               QStringList{
                   u"Lorvane is an independent implementation. Ventrel’s cloud transcription, AI rewriting, accounts, and cross-device sync are not included."_qs,
                   u"Lorvane"_qs, u"Your voice. Your workspace."_qs};
    }

    static bool isOn(const QString &toggle) {
        QAccessibleInterface *seen = find(toggle, QAccessible::CheckBox);
        return seen && seen->state().checked;
    }

    static void flip(const QString &toggle) {
        find(toggle, QAccessible::CheckBox)
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::toggleAction());
    }

    static QString chosenLanguage() {
        return find(picker, QAccessible::ComboBox)->text(QAccessible::Description);
    }

    /// The detail that stands below a title.
    static QString detail(const QString &title) {
        const QStringList seen = names();
        return seen.value(seen.indexOf(title, seen.indexOf(u"SHORTCUT & PERMISSIONS"_qs)) + 1);
    }
};

TEST_F(SettingsPageTest, EveryTextIsThereInItsOrderInEveryState) {
    for (const bool isGranted : {true, false}) {
        ports.permissions.microphone = isGranted ? 3 : 2;
        ports.permissions.speech = isGranted ? 3 : 1;
        ports.permissions.accessibility = isGranted;
        open();
        EXPECT_EQ(page(), wholePage(isGranted, false, false));
        openPage(u"Home"_qs);
    }
    ports.permissions.microphone = 3;
    ports.permissions.speech = 3;
    ports.permissions.accessibility = true;
    open();
    hold();
    speak(1s);
    EXPECT_EQ(page().mid(3), wholePage(true, true, false)) << "below the message, while recording";
    letGo();
    EXPECT_EQ(page().mid(3), wholePage(true, true, false)) << "while the words are prepared";
    ports.speech.fileRequests().back()->fail(u"It broke."_qs);
    clock().advance(1s);
    store->dismissErrorMessage();
    store->dismissStatusMessage();
    EXPECT_EQ(page(), wholePage(true, false, true)) << "with the audio of a failed dictation";
}

TEST_F(SettingsPageTest, AFlippedSwitchChangesItsSettingAtOnceAndTheLibrarySoon) {
    open();
    EXPECT_TRUE(isOn(u"Smart punctuation"_qs));
    EXPECT_TRUE(isOn(u"Remove filler words"_qs));
    EXPECT_FALSE(isOn(u"Paste button recordings"_qs));

    AppSettings expected;
    flip(u"Smart punctuation"_qs);
    expected.smartPunctuation = false;
    EXPECT_EQ(store->settings(), expected);
    flip(u"Remove filler words"_qs);
    expected.removeFillers = false;
    EXPECT_EQ(store->settings(), expected);
    flip(u"Paste button recordings"_qs);
    expected.autoPaste = true;
    EXPECT_EQ(store->settings(), expected);
    EXPECT_TRUE(isOn(u"Paste button recordings"_qs));

    clock().advance(250ms);
    QFile library(ports.libraryPath());
    ASSERT_TRUE(library.open(QFile::ReadOnly));
    EXPECT_TRUE(library.readAll().contains(R"("autoPaste" : true)"));

    store->setSettings({});
    EXPECT_FALSE(isOn(u"Paste button recordings"_qs)) << "it follows what is stored";
    flip(u"Paste button recordings"_qs);
    EXPECT_TRUE(store->settings().autoPaste);
}

TEST_F(SettingsPageTest, EachLanguageIsStoredByItsIdentifier) {
    EXPECT_EQ(SettingsModel::languages(), languages);
    SettingsModel model;
    model.setStore(store.get());
    for (int i = 0; i < languages.size(); ++i) {
        model.setLanguage(i);
        EXPECT_EQ(store->settings().languageIdentifier, identifiers[i]);
        EXPECT_EQ(model.language(), i);
    }
}

TEST_F(SettingsPageTest, ALanguageIsChosenWithTheKeyboard) {
    open();
    find(picker, QAccessible::ComboBox)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Down);
    EXPECT_EQ(store->settings().languageIdentifier, u"en-US"_qs);
    EXPECT_EQ(chosenLanguage(), u"English (United States)"_qs);

    type(Qt::Key_Space, u" "_qs);
    for (const QString &language : languages)
        EXPECT_NE(find(language, QAccessible::ListItem), nullptr) << language.toStdString();
    type(Qt::Key_End);
    type(Qt::Key_Return, u"\r"_qs);
    EXPECT_EQ(store->settings().languageIdentifier, u"ja-JP"_qs);
    EXPECT_EQ(chosenLanguage(), u"日本語"_qs);
}

TEST_F(SettingsPageTest, TheLanguagesThatAssistiveTechnologyOpensAreClosedByEscape) {
    open();
    find(picker, QAccessible::ComboBox)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_NE(find(u"Français"_qs, QAccessible::ListItem), nullptr);
    type(Qt::Key_Escape);
    EXPECT_EQ(find(u"Français"_qs, QAccessible::ListItem), nullptr);
}

TEST_F(SettingsPageTest, ALanguageThatIsNotOfferedIsKeptAndShowsNoChoice) {
    AppSettings stored;
    stored.languageIdentifier = u"pt-BR"_qs;
    store->setSettings(stored);
    open();
    EXPECT_EQ(chosenLanguage(), QString());
    EXPECT_EQ(store->settings().languageIdentifier, u"pt-BR"_qs);
    flip(u"Smart punctuation"_qs);
    EXPECT_EQ(store->settings().languageIdentifier, u"pt-BR"_qs);
}

TEST_F(SettingsPageTest, ADictationLocksTheGuideAndThePreviewOnly) {
    open();
    const QStringList locked{u"Open setup guide"_qs, u"Preview mini window"_qs,
                             u"Set up microphone"_qs};
    const auto expectLocked = [&](bool isLocked) {
        for (const QString &name : locked)
            EXPECT_EQ(isEnabled(name), !isLocked) << name.toStdString();
        EXPECT_TRUE(isEnabled(u"Refresh"_qs));
        for (const QString &toggle :
             {u"Smart punctuation"_qs, u"Remove filler words"_qs, u"Paste button recordings"_qs})
            EXPECT_TRUE(
                find(toggle, QAccessible::CheckBox)->object()->property("enabled").toBool());
        EXPECT_TRUE(find(picker, QAccessible::ComboBox)->object()->property("enabled").toBool());
    };
    expectLocked(false);
    hold();
    speak(1s);
    ASSERT_TRUE(store->isRecording());
    expectLocked(true);
    letGo();
    ASSERT_TRUE(store->isBusy());
    expectLocked(true);
    answer(u"words"_qs);
    clock().advance(1s);
    expectLocked(false);
}

TEST_F(SettingsPageTest, TheGuideOpensAtItsFirstStepOrAtTheMicrophone) {
    open();
    ASSERT_TRUE(activate(u"Set up microphone"_qs));
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    EXPECT_TRUE(shows(u"2 of 5"_qs));
    store->finishSetup();
    ASSERT_TRUE(activate(u"Open setup guide"_qs));
    EXPECT_EQ(store->setupStep(), SetupStep::welcome);
    EXPECT_TRUE(shows(u"1 of 5"_qs));
}

TEST_F(SettingsPageTest, ThePreviewShowsTheIndicator) {
    open();
    ASSERT_TRUE(activate(u"Preview mini window"_qs));
    clock().runUntilIdle();
    EXPECT_TRUE(store->recordingOverlay().isVisible());
}

TEST_F(SettingsPageTest, TheGrantsAreReadWhenThePageAppearsAndOnRefresh) {
    window->open();
    ports.permissions.microphone = 2;
    ports.permissions.speech = 0;
    ports.permissions.accessibility = false;
    ASSERT_TRUE(activate(u"Settings"_qs));
    EXPECT_EQ(detail(u"Microphone"_qs), u"Access is needed before a recording can start."_qs);
    EXPECT_EQ(detail(u"Speech recognition"_qs), u"Requested when you first dictate"_qs);
    EXPECT_EQ(detail(u"Accessibility"_qs),
              u"Needed only to paste into another app automatically."_qs);
    EXPECT_TRUE(isEnabled(u"Grant access"_qs));
    EXPECT_FALSE(shows(u"Enabled"_qs));

    const QList<std::pair<int, QString>> rows{{1, u"Denied — enable in System Settings"_qs},
                                              {2, u"Restricted by this Mac"_qs},
                                              {3, u"Allowed"_qs},
                                              {7, u"Unknown"_qs}};
    for (const auto &[status, text] : rows) {
        ports.permissions.speech = status;
        ASSERT_TRUE(activate(u"Refresh"_qs));
        EXPECT_EQ(detail(u"Speech recognition"_qs), text);
    }

    ports.permissions.microphone = 3;
    ports.permissions.accessibility = true;
    ASSERT_TRUE(activate(u"Refresh"_qs));
    EXPECT_EQ(detail(u"Microphone"_qs), u"Allowed. Voice recording is available."_qs);
    EXPECT_EQ(detail(u"Accessibility"_qs), u"Enabled. Automatic insertion is available."_qs);
    EXPECT_TRUE(shows(u"Enabled"_qs));
    EXPECT_FALSE(shows(u"Grant access"_qs));
}

TEST_F(SettingsPageTest, AccessibilityIsAskedFor) {
    ports.permissions.accessibility = false;
    open();
    ASSERT_TRUE(activate(u"Grant access"_qs));
    EXPECT_EQ(ports.permissions.accessibilityRequestCount, 1);
}

TEST_F(SettingsPageTest, AKeptRecordingCanBeShownWhileThereIsOne) {
    open();
    EXPECT_FALSE(shows(u"Show saved recording"_qs));
    hold();
    speak(1s);
    letGo();
    ports.speech.fileRequests().back()->fail(u"It broke."_qs);
    clock().advance(1s);
    ASSERT_FALSE(store->recoveryAudioURL().isEmpty());
    EXPECT_TRUE(shows(u"Show saved recording"_qs));
    ASSERT_TRUE(activate(u"Show saved recording"_qs));
    EXPECT_EQ(ports.workspace.shownFiles, QStringList{store->recoveryAudioURL()});

    hold();
    EXPECT_FALSE(shows(u"Show saved recording"_qs)) << "the next dictation clears it";
}

TEST_F(SettingsPageTest, TheTabKeyReachesEveryControlInOrder) {
    ports.permissions.accessibility = false;
    open();
    const QStringList order = tabOrder(u"Open setup guide"_qs);
    EXPECT_EQ(order.mid(0, 9),
              (QStringList{u"Open setup guide"_qs, u"Preview mini window"_qs,
                           u"Recognition language"_qs, u"Smart punctuation"_qs,
                           u"Remove filler words"_qs, u"Paste button recordings"_qs,
                           u"Set up microphone"_qs, u"Refresh"_qs, u"Grant access"_qs}));
}

TEST_F(SettingsPageTest, ASwitchIsFlippedWithTheSpaceBar) {
    open();
    find(u"Remove filler words"_qs, QAccessible::CheckBox)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Space, u" "_qs);
    EXPECT_FALSE(store->settings().removeFillers);
    type(Qt::Key_Return, u"\r"_qs);
    EXPECT_TRUE(store->settings().removeFillers);
}

} // namespace
} // namespace lorvane
