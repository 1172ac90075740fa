#pragma once

#include "AppStore/AppStore.h"
#include "Core/LocalRepository.h"
#include "Fakes/FakePorts.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <memory>

namespace lorvane {

inline const RunningApplication editor{42, 1, 100};
inline const RunningApplication browser{43, 2, 101};
inline const AccessibleElement field{QStringLiteral(":1.5"), QStringLiteral("/field")};

/// A store on a whole platform of fakes, with an editor in front whose field has the focus.
class StoreFixture : public testing::Test {
protected:
    FakePorts ports;
    std::unique_ptr<AppStore> store;

    void SetUp() override {
        ports.userDefaults.setBoolean(FirstLaunchSetup::completionKey, true);
        ports.workspace.front = editor;
        ports.accessibility.focused[editor.processId] = field;
        makeStore();
    }

    void TearDown() override {
        if (store)
            store->shutdown();
        clock().runUntilIdle();
    }

    void makeStore() {
        store.reset();
        store = std::make_unique<AppStore>(ports);
        clock().runUntilIdle();
    }

    void press() { ports.hotKey.press(); }
    void release() { ports.hotKey.release(); }

    void hold() {
        press();
        clock().runUntilIdle();
    }

    void speak(std::chrono::milliseconds time) {
        ports.audioInput.deliver(static_cast<qsizetype>(time.count()) * 48, 0.1F);
        clock().runUntilIdle();
    }

    void letGo() {
        release();
        clock().runUntilIdle();
    }

    /// What the recogniser makes of the file.
    void answer(const QString &words) {
        ports.speech.fileRequests().back()->give(FakeSpeech::result(words, true));
        clock().runUntilIdle();
    }

    /// A whole hold recording, up to the paste key.
    void dictate(const QString &words) {
        using namespace std::chrono_literals;
        hold();
        speak(1s);
        letGo();
        answer(words);
        clock().advance(1s);
    }

    Meter &meter() { return *store->recordingOverlay().meter(); }
    FakeClock &clock() { return ports.clock; }
};

/// What the tests of a dictation's flow share: its words, and a look at how it ended.
class DictationTest : public StoreFixture {
protected:
    const QString early =
        QStringLiteral("Released before the microphone was ready. After granting permissions, hold "
                       "⌃⌥Space again.");
    const QString pasted = QStringLiteral("Saved and paste requested at your cursor.");
    const QString notPasted = QStringLiteral(
        "Saved and copied. Paste with ⌘V; automatic paste needs Accessibility access "
        "and the original text field.");
    const QString copied = QStringLiteral("Saved to history and copied to the clipboard.");
    const QString noSpeech = QStringLiteral("No speech detected. Try again when you’re ready.");

    QString textOnDisk() const {
        const auto history = LocalRepository(ports.libraryPath()).load().history;
        return history.isEmpty() ? QString() : history.first().text;
    }

    void setAutoPaste(bool autoPaste) {
        AppSettings settings = store->settings();
        settings.autoPaste = autoPaste;
        store->setSettings(settings);
    }

    /// A whole button recording, up to the wait for the paste.
    void recordByButton(const QString &words) {
        using namespace std::chrono_literals;
        store->toggleRecording();
        clock().runUntilIdle();
        speak(1s);
        store->toggleRecording();
        clock().runUntilIdle();
        answer(words);
    }

    void expectIdle() {
        EXPECT_FALSE(store->isBusy());
        EXPECT_FALSE(store->hasStarted());
        EXPECT_FALSE(store->isRecording());
        EXPECT_EQ(store->holdPhase(), HoldToTalkState::Phase::idle);
        EXPECT_FALSE(ports.overlayPanel.visible);
        EXPECT_FALSE(ports.audioInput.isRunning());
    }
};

} // namespace lorvane
