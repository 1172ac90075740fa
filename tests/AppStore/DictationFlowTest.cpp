#include "StoreFixture.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;
using Phase = HoldToTalkState::Phase;

using DictationFlowTest = DictationTest;

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

TEST_F(DictationFlowTest, ButtonRecordingNamesTheEngineToo) {
    ports.speech.supportsOnDeviceRecognition = false;
    store->toggleRecording();
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), u"Listening · Apple Speech service"_s);
}

TEST_F(DictationFlowTest, PressDuringTheWaitForThePasteIsDropped) {
    hold();
    speak(1s);
    letGo();
    answer(u"hello"_s);
    ASSERT_EQ(store->statusMessage(), u"Transcribing the complete recording…"_s);
    hold();
    store->toggleRecording();
    clock().advance(1s);
    EXPECT_EQ(store->statusMessage(), pasted);
    EXPECT_EQ(ports.audioInput.startCount, 1);
    expectIdle();
}

TEST_F(DictationFlowTest, ReleaseLongAfterTheButtonEndedAHoldFindsNothingToDo) {
    hold();
    speak(1s);
    store->toggleRecording();
    clock().runUntilIdle();
    answer(u"hello"_s);
    clock().advance(1s);
    ASSERT_EQ(store->statusMessage(), pasted);
    letGo();
    EXPECT_EQ(store->statusMessage(), pasted);
    EXPECT_EQ(store->historyCount(), 1);
    expectIdle();
}

TEST_F(DictationFlowTest, CancelBetweenTheReleaseAndItsTaskWins) {
    hold();
    speak(1s);
    release();
    store->cancelRecording();
    clock().runUntilIdle();
    EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
    EXPECT_TRUE(ports.speech.fileRequests().empty());
    expectIdle();
}

} // namespace
} // namespace lorvane
