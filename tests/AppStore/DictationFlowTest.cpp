#include "StoreFixture.h"

#include "Core/LocalRepository.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;
using Phase = HoldToTalkState::Phase;

class DictationFlowTest : public StoreFixture {
protected:
    const QString early = u"Released before the microphone was ready. After granting permissions, "
                          "hold ⌃⌥Space again."_s;
    const QString pasted = u"Saved and paste requested at your cursor."_s;
    const QString notPasted = u"Saved and copied. Paste with ⌘V; automatic paste needs "
                              "Accessibility access and the original text field."_s;
    const QString copied = u"Saved to history and copied to the clipboard."_s;

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
        EXPECT_EQ(store->holdPhase(), Phase::idle);
        EXPECT_FALSE(ports.overlayPanel.visible);
        EXPECT_FALSE(ports.audioInput.isRunning());
    }
};

// From press to paste

TEST_F(DictationFlowTest, HoldRecordingRunsFromPressToPaste) {
    press();
    EXPECT_TRUE(store->isBusy());
    EXPECT_EQ(store->statusMessage(), u"Preparing microphone…"_s);
    EXPECT_EQ(meter().mode(), Mode::preparing);
    EXPECT_EQ(meter().detail(), u"Preparing microphone…"_s);
    EXPECT_TRUE(ports.overlayPanel.visible);

    clock().runUntilIdle();
    EXPECT_FALSE(store->isBusy());
    EXPECT_TRUE(store->isRecording());
    EXPECT_TRUE(store->isHoldingToTalk());
    EXPECT_EQ(meter().mode(), Mode::recording);
    EXPECT_EQ(store->statusMessage(),
              u"Listening · release ⌃⌥Space to paste · on-device recognition"_s);

    speak(2s);
    ports.speech.liveRequests().back()->give(FakeSpeech::result(u"hello wor"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(store->displayedTranscript(), u"hello wor"_s);
    EXPECT_EQ(meter().duration(), 2);

    release();
    EXPECT_EQ(store->holdPhase(), Phase::finishing);
    EXPECT_FALSE(store->isBusy()) << "the finish hasn't run yet";
    clock().runUntilIdle();
    EXPECT_TRUE(store->isBusy());
    EXPECT_EQ(store->statusMessage(), u"Transcribing the complete recording…"_s);
    EXPECT_EQ(meter().mode(), Mode::transcribing);
    EXPECT_EQ(meter().detail(), u"Transcribing part 1 of 1…"_s);

    answer(u"um hello world"_s);
    EXPECT_EQ(store->holdPhase(), Phase::idle);
    EXPECT_TRUE(store->isBusy()) << "the paste still waits";
    EXPECT_TRUE(ports.overlayPanel.visible);
    EXPECT_EQ(store->displayedTranscript(), u"Hello world."_s);
    EXPECT_TRUE(store->hasCompletedTranscript());
    clock().advance(180ms);
    EXPECT_EQ(ports.pasteboard.text, u"Hello world."_s);
    EXPECT_EQ(ports.keyboard.pasteCount, 1);
    EXPECT_EQ(store->statusMessage(), pasted);
    EXPECT_EQ(store->errorMessage(), QString());
    expectIdle();
    ASSERT_EQ(store->history().size(), 1);
    EXPECT_EQ(store->history().first().text, u"Hello world."_s);
    EXPECT_EQ(store->history().first().duration, 2);
    EXPECT_EQ(store->history().first().createdAt, clock().now().addMSecs(-180));
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(DictationFlowTest, RecordIsOnDiskBeforeThePasteStarts) {
    QString onDisk;
    ports.keyboard.onPaste = [&] { onDisk = textOnDisk(); };
    dictate(u"first"_s);
    dictate(u"second"_s);
    EXPECT_EQ(onDisk, u"Second."_s);
    EXPECT_EQ(store->history().at(0).text, u"Second."_s);
    EXPECT_EQ(store->history().at(1).text, u"First."_s);
}

TEST_F(DictationFlowTest, PasteThatGivesUpKeepsTheRecordAndTheTextOnThePasteboard) {
    hold();
    speak(1s);
    letGo();
    answer(u"hello"_s);
    ports.workspace.bringForward(browser);
    clock().advance(1s);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    EXPECT_EQ(ports.pasteboard.text, u"Hello."_s);
    EXPECT_EQ(store->statusMessage(), notPasted);
    EXPECT_EQ(textOnDisk(), u"Hello."_s);
    expectIdle();
}

TEST_F(DictationFlowTest, TargetIsTheApplicationOfThePressNotOfTheRelease) {
    hold();
    ports.workspace.bringForward(browser);
    speak(1s);
    letGo();
    answer(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(ports.workspace.activated, QList{editor});
    EXPECT_EQ(store->statusMessage(), pasted);
}

TEST_F(DictationFlowTest, HintsAreTheDictionaryAndThenTheTriggers) {
    store->setVocabulary({VocabularyEntry(u"kube ctl"_s, u"kubectl"_s)});
    store->setSnippets({Snippet{.trigger = u"sign off"_s, .content = u"Regards"_s}});
    hold();
    EXPECT_EQ(ports.speech.liveRequests().back()->options.contextualStrings,
              QStringList({u"kubectl"_s, u"kube ctl"_s, u"sign off"_s}));
}

TEST_F(DictationFlowTest, TextIsCleanedWithTheDictionaryOfTheEnd) {
    hold();
    speak(1s);
    store->setVocabulary({VocabularyEntry(u"kube ctl"_s, u"kubectl"_s)});
    letGo();
    answer(u"use kube ctl"_s);
    EXPECT_EQ(store->history().first().text, u"Use kubectl."_s);
}

TEST_F(DictationFlowTest, EngineWithoutOnDeviceRecognitionIsNamed) {
    ports.speech.supportsOnDeviceRecognition = false;
    hold();
    EXPECT_EQ(store->statusMessage(),
              u"Listening · release ⌃⌥Space to paste · Apple Speech service"_s);
}

// Presses and releases that come at the wrong time

TEST_F(DictationFlowTest, ReleaseBeforeTheStartHasRunKeepsNothing) {
    press();
    release();
    EXPECT_EQ(store->statusMessage(), early);
    EXPECT_FALSE(ports.overlayPanel.visible);
    EXPECT_TRUE(store->isBusy()) << "the start task hasn't wound down";
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), early);
    EXPECT_EQ(ports.audioInput.startCount, 0);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
    expectIdle();
}

TEST_F(DictationFlowTest, ReleaseWhileAPromptStandsKeepsNothing) {
    press();
    // The grant is taken back between the check and the start, and asked for again.
    ports.permissions.speech = 0;
    ports.permissions.speechAnswer.reset();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.speechPromptCount, 1);
    letGo();
    EXPECT_TRUE(store->isBusy());
    EXPECT_EQ(store->statusMessage(), early);
    hold();
    EXPECT_EQ(store->holdPhase(), Phase::idle) << "a press is dropped while the start winds down";
    ports.permissions.answerSpeech(true);
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), early);
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
    expectIdle();
}

TEST_F(DictationFlowTest, LateReleaseFinishesTheRecording) {
    hold();
    speak(600s);
    letGo();
    EXPECT_EQ(store->statusMessage(), u"Transcribing the complete recording…"_s);
    EXPECT_EQ(meter().detail(), u"Transcribing part 1 of 20…"_s);
}

TEST_F(DictationFlowTest, PressWhileTranscribingIsDroppedAndNotRemembered) {
    hold();
    speak(1s);
    letGo();
    hold();
    answer(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(store->statusMessage(), pasted);
    EXPECT_EQ(ports.audioInput.startCount, 1);
    letGo();
    expectIdle();
}

TEST_F(DictationFlowTest, PressAfterTheReleaseButBeforeItsTaskIsDropped) {
    hold();
    speak(1s);
    release();
    press();
    EXPECT_EQ(store->holdPhase(), Phase::finishing);
    clock().runUntilIdle();
    answer(u"hello"_s);
    EXPECT_EQ(ports.audioInput.startCount, 1);
}

TEST_F(DictationFlowTest, PressDuringAButtonRecordingDoesNotEndIt) {
    store->toggleRecording();
    clock().runUntilIdle();
    hold();
    EXPECT_EQ(store->holdPhase(), Phase::idle);
    letGo();
    EXPECT_TRUE(store->isRecording());
    EXPECT_EQ(store->statusMessage(), u"Listening · on-device recognition"_s);
}

TEST_F(DictationFlowTest, ReleaseAfterTheButtonEndedAHoldAddsNothing) {
    hold();
    speak(1s);
    store->toggleRecording();
    clock().runUntilIdle();
    EXPECT_TRUE(store->isBusy());
    letGo();
    answer(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(store->historyCount(), 1);
    EXPECT_EQ(ports.keyboard.pasteCount, 1);
    expectIdle();
}

// Button recordings

TEST_F(DictationFlowTest, ButtonRecordingIsOnlyCopiedUnlessPastingIsSet) {
    recordByButton(u"hello"_s);
    EXPECT_EQ(store->statusMessage(), copied);
    EXPECT_EQ(ports.pasteboard.text, u"Hello."_s);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    expectIdle();
}

TEST_F(DictationFlowTest, ButtonRecordingFromOurWindowPastesIntoTheLastOtherApplication) {
    setAutoPaste(true);
    ports.workspace.bringForward({QCoreApplication::applicationPid(), 9, 9});
    clock().runUntilIdle();
    recordByButton(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(ports.workspace.activated, QList{editor});
    EXPECT_EQ(store->statusMessage(), pasted);
}

TEST_F(DictationFlowTest, ButtonRecordingWithNowhereToPasteSaysSo) {
    ports.workspace.front = RunningApplication{QCoreApplication::applicationPid(), 9, 9};
    makeStore();
    setAutoPaste(true);
    recordByButton(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(store->statusMessage(), notPasted);
}

TEST_F(DictationFlowTest, HoldRecordingPastesWhateverTheSettingSays) {
    setAutoPaste(false);
    dictate(u"hello"_s);
    EXPECT_EQ(store->statusMessage(), pasted);
}

TEST_F(DictationFlowTest, HoldRecordingGoesIntoOurOwnFieldsToo) {
    const RunningApplication own{QCoreApplication::applicationPid(), 9, 9};
    ports.workspace.bringForward(own);
    dictate(u"hello"_s);
    EXPECT_TRUE(ports.workspace.activated.isEmpty());
    EXPECT_EQ(store->statusMessage(), pasted);
}

TEST_F(DictationFlowTest, ButtonIsBarredWhileBusy) {
    store->toggleRecording();
    store->toggleRecording();
    clock().runUntilIdle();
    EXPECT_TRUE(store->isRecording());
}

// Starts that fail

TEST_F(DictationFlowTest, MissingGrantOpensTheGuideAndReportsNoFailure) {
    int requests = 0;
    QObject::connect(store.get(), &AppStore::setupRequested, store.get(), [&] { ++requests; });
    ports.permissions.speech = 1;
    hold();
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::speech);
    ports.permissions.microphone = 2;
    letGo();
    hold();
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    EXPECT_EQ(store->statusMessage(), QString());
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(ports.audioInput.startCount, 0);
    letGo();
    expectIdle();
}

TEST_F(DictationFlowTest, GrantThatIsRefusedDuringTheStartOpensTheGuide) {
    press();
    ports.permissions.microphone = 2;
    clock().runUntilIdle();
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_EQ(store->statusMessage(), QString());
    expectIdle();
}

TEST_F(DictationFlowTest, MissingInputShowsItsWords) {
    ports.audioInput.nativeFormat = {};
    hold();
    EXPECT_EQ(store->errorMessage(),
              u"No microphone input is available. Check your audio input in System Settings."_s);
    EXPECT_EQ(store->statusMessage(), QString());
    expectIdle();
    letGo();
    expectIdle();
}

TEST_F(DictationFlowTest, NextStartClearsTheErrorOfTheLast) {
    ports.audioInput.startError = u"The source is busy"_s;
    hold();
    EXPECT_EQ(store->errorMessage(), u"The source is busy"_s);
    letGo();
    ports.audioInput.startError.reset();
    hold();
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_TRUE(store->isRecording());
}

// Endings without a paste

TEST_F(DictationFlowTest, NoSpeechMakesNoRecordAndLeavesThePasteboardAlone) {
    for (const QString &heard : {u""_s, u"um uh"_s}) {
        hold();
        speak(1s);
        letGo();
        answer(heard);
        EXPECT_EQ(store->statusMessage(), u"No speech detected. Try again when you’re ready."_s);
        EXPECT_FALSE(ports.pasteboard.text);
        EXPECT_EQ(store->historyCount(), 0);
        EXPECT_TRUE(ports.recordingFolders().isEmpty());
        expectIdle();
    }
}

TEST_F(DictationFlowTest, IncompleteTranscriptIsCopiedAndNeverPasted) {
    hold();
    speak(1s);
    letGo();
    ports.speech.fileRequests().back()->giveAndFail(FakeSpeech::result(u"as far as"_s, false),
                                                    u"Broken."_s);
    clock().runUntilIdle();
    clock().advance(1s);
    EXPECT_EQ(store->history().first().text, u"As far as."_s);
    EXPECT_EQ(ports.pasteboard.text, u"As far as."_s);
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    EXPECT_EQ(store->statusMessage(), QString());
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_TRUE(QFileInfo::exists(store->recoveryAudioURL()));
    store->revealRecoveryAudio();
    EXPECT_EQ(ports.workspace.shownFiles, QStringList{store->recoveryAudioURL()});
    expectIdle();
}

TEST_F(DictationFlowTest, IncompleteTranscriptWithoutTextMakesNoRecord) {
    hold();
    speak(1s);
    letGo();
    ports.speech.fileRequests().back()->fail(u"Broken."_s);
    clock().runUntilIdle();
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_EQ(store->statusMessage(), QString());
    EXPECT_FALSE(ports.pasteboard.text);
    EXPECT_TRUE(QFileInfo::exists(store->recoveryAudioURL()));
    expectIdle();
}

TEST_F(DictationFlowTest, CancelThrowsTheRecordingAway) {
    hold();
    speak(1s);
    store->cancelRecording();
    EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
    EXPECT_EQ(store->displayedTranscript(), QString());
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
    clock().runUntilIdle();
    letGo();
    EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
    EXPECT_EQ(store->historyCount(), 0);
    expectIdle();
}

TEST_F(DictationFlowTest, CancelDoesNothingWhileBusy) {
    press();
    store->cancelRecording();
    clock().runUntilIdle();
    EXPECT_TRUE(store->isRecording());
    speak(1s);
    letGo();
    store->cancelRecording();
    answer(u"hello"_s);
    clock().advance(1s);
    EXPECT_EQ(store->statusMessage(), pasted);
}

TEST_F(DictationFlowTest, CancelWithNothingRunningSaysTheSameWords) {
    store->cancelRecording();
    EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
}

// Capture that ends by itself

TEST_F(DictationFlowTest, CaptureThatEndsDuringAHoldWaitsForTheRelease) {
    hold();
    speak(1s);
    ports.audioInput.end(u"Entity killed"_s);
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), u"Audio capture ended unexpectedly. Release the shortcut to "
                                      "recover the captured recording."_s);
    EXPECT_TRUE(store->isRecording());
    letGo();
    answer(u"hello"_s);
    EXPECT_EQ(store->history().first().text, u"Hello."_s);
    expectIdle();
}

TEST_F(DictationFlowTest, CaptureThatEndsDuringAButtonRecordingFinishesItAtOnce) {
    store->toggleRecording();
    clock().runUntilIdle();
    speak(1s);
    ports.audioInput.end(u"Entity killed"_s);
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), u"Transcribing the complete recording…"_s);
    answer(u"hello"_s);
    EXPECT_EQ(store->history().first().text, u"Hello."_s);
    expectIdle();
}

TEST_F(DictationFlowTest, PressBetweenTheEndOfCaptureAndItsFinishIsDropped) {
    store->toggleRecording();
    clock().runUntilIdle();
    speak(1s);
    ports.audioInput.end(u"Entity killed"_s);
    press();
    EXPECT_EQ(store->holdPhase(), Phase::idle);
    clock().runUntilIdle();
    answer(u"hello"_s);
    EXPECT_EQ(store->historyCount(), 1);
}

// The indicator's preview

TEST_F(DictationFlowTest, PreviewRunsForSixtyFiveStepsAndHides) {
    store->previewRecordingIndicator();
    clock().runUntilIdle();
    EXPECT_EQ(meter().mode(), Mode::preview);
    EXPECT_EQ(meter().detail(), u"Preview only · microphone off"_s);
    EXPECT_DOUBLE_EQ(meter().samples().last(), 0.25);
    clock().advance(80ms * 64);
    EXPECT_TRUE(ports.overlayPanel.visible);
    EXPECT_DOUBLE_EQ(meter().duration(), 64 * 0.08);
    clock().advance(80ms);
    EXPECT_FALSE(ports.overlayPanel.visible);
}

TEST_F(DictationFlowTest, DictationTakesTheIndicatorOverFromAPreview) {
    store->previewRecordingIndicator();
    clock().advance(1s);
    hold();
    store->previewRecordingIndicator();
    EXPECT_EQ(meter().mode(), Mode::recording);
    clock().advance(10s);
    EXPECT_TRUE(ports.overlayPanel.visible);
    EXPECT_EQ(meter().mode(), Mode::recording);
    EXPECT_EQ(meter().detail(), u"Recording"_s);
}

TEST_F(DictationFlowTest, RevealWithoutRecoveryAudioDoesNothing) {
    store->revealRecoveryAudio();
    EXPECT_TRUE(ports.workspace.shownFiles.isEmpty());
    EXPECT_EQ(store->statusMessage(), QString());
}

} // namespace
} // namespace lorvane
