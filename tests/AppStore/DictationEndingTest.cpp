#include "StoreFixture.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Phase = HoldToTalkState::Phase;

using DictationEndingTest = DictationTest;

// Endings without a paste

TEST_F(DictationEndingTest, NoSpeechMakesNoRecordAndLeavesThePasteboardAlone) {
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

TEST_F(DictationEndingTest, IncompleteTranscriptIsCopiedAndNeverPasted) {
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

TEST_F(DictationEndingTest, IncompleteTranscriptWithoutTextMakesNoRecord) {
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

TEST_F(DictationEndingTest, RecordWhoseRecordingHasNoLengthLastsAsLongAsItWasHeld) {
    ports.speech.hasAnalyzer = true;
    ports.speech.onAnalyze = [](const FakeSpeech::AnalysisPointer &analysis) {
        analysis->give(u"hello"_s, 0, 1);
        analysis->end();
    };
    hold();
    clock().advance(2500ms);
    letGo();
    ASSERT_EQ(store->historyCount(), 1);
    EXPECT_EQ(store->history().first().duration, 2.5);
}

TEST_F(DictationEndingTest, AudioIsThereUntilItsRecordIsOnDisk) {
    ports.pasteboard.onSet = [this] {
        EXPECT_EQ(textOnDisk(), u"Hello."_s);
        EXPECT_EQ(ports.recordingFolders().size(), 1);
    };
    for (const bool autoPaste : {true, false}) {
        setAutoPaste(autoPaste);
        dictate(u"hello"_s);
        EXPECT_TRUE(ports.recordingFolders().isEmpty());
    }
    EXPECT_EQ(ports.pasteboard.setCount, 2);
}

TEST_F(DictationEndingTest, CancelThrowsTheRecordingAway) {
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

TEST_F(DictationEndingTest, CancelDoesNothingWhileBusy) {
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

TEST_F(DictationEndingTest, CancelWithNothingRunningSaysTheSameWords) {
    store->cancelRecording();
    EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
}

TEST_F(DictationEndingTest, RevealWithoutRecoveryAudioDoesNothing) {
    store->revealRecoveryAudio();
    EXPECT_TRUE(ports.workspace.shownFiles.isEmpty());
    EXPECT_EQ(store->statusMessage(), QString());
}

// Capture that ends by itself

TEST_F(DictationEndingTest, CaptureThatEndsDuringAHoldWaitsForTheRelease) {
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

TEST_F(DictationEndingTest, CaptureThatEndsDuringAButtonRecordingFinishesItAtOnce) {
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

TEST_F(DictationEndingTest, PressBetweenTheEndOfCaptureAndItsFinishIsDropped) {
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

// What an ending leaves alone

TEST_F(DictationEndingTest, EndingLeavesAnEarlierErrorStanding) {
    const auto fail = [this] {
        store->addSnippet(u"same"_s, u"1"_s);
        store->addSnippet(u"same"_s, u"2"_s);
    };
    const QString error = u"This snippet trigger already exists."_s;
    for (const QString &heard : {u"hello"_s, u""_s}) {
        hold();
        EXPECT_EQ(store->errorMessage(), QString()) << "an accepted start clears it";
        fail();
        speak(1s);
        letGo();
        answer(heard);
        clock().advance(1s);
        EXPECT_EQ(store->errorMessage(), error);
        expectIdle();
    }
    hold();
    fail();
    store->cancelRecording();
    EXPECT_EQ(store->errorMessage(), error);
}

TEST_F(DictationEndingTest, PasteboardIsLeftAloneWhenThereIsNoText) {
    store->copyTranscript(u"before"_s);
    hold();
    store->cancelRecording();
    letGo();
    press();
    letGo();
    hold();
    speak(1s);
    letGo();
    ports.speech.fileRequests().back()->fail(u"Broken."_s);
    clock().runUntilIdle();
    EXPECT_EQ(ports.pasteboard.text, u"before"_s);
    EXPECT_EQ(ports.pasteboard.setCount, 1);
}

TEST_F(DictationEndingTest, FailureToSaveDoesNotKeepTheTextFromItsTarget) {
    QDir().mkpath(ports.libraryPath());
    dictate(u"hello"_s);
    EXPECT_TRUE(store->errorMessage().startsWith(u"Could not save the library: "_s));
    EXPECT_EQ(store->statusMessage(), pasted);
    EXPECT_EQ(ports.pasteboard.text, u"Hello."_s);
    EXPECT_EQ(store->historyCount(), 1);
}

} // namespace
} // namespace lorvane
