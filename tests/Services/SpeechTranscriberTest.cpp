#include "SpeechTranscriberFixture.h"

#include <QFileInfo>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Kind = TranscriptionError::Kind;

using SpeechTranscriberTest = SpeechTranscriberFixture;

// Starting

TEST_F(SpeechTranscriberTest, StartReturnsWhenAudioIsFlowing) {
    start();
    EXPECT_TRUE(started);
    EXPECT_TRUE(transcriber.isRecording());
    EXPECT_TRUE(ports.audioInput.isRunning());
    EXPECT_EQ(transcriber.processingMessage(), u"Recording"_s);
    EXPECT_TRUE(transcriber.usesOnDeviceRecognition());
    EXPECT_EQ(ports.speech.requestedLocales, QStringList{u"en-AU"_s});
}

TEST_F(SpeechTranscriberTest, SecondStartIsRefusedAndChangesNothing) {
    start();
    start();
    EXPECT_EQ(startError, Kind::alreadyRecording);
    EXPECT_EQ(startErrorText, u"A dictation session is already in progress."_s);
    EXPECT_TRUE(transcriber.isRecording());
    EXPECT_EQ(transcriber.errorMessage(), QString());
}

TEST_F(SpeechTranscriberTest, StartDuringAFinishIsRefused) {
    start();
    speak(1s);
    stop();
    start();
    EXPECT_EQ(startError, Kind::alreadyRecording);
    answerChunk(u"Hello."_s);
    EXPECT_EQ(text, u"Hello."_s);
}

TEST_F(SpeechTranscriberTest, StartOfACancelledCallerChangesNothing) {
    starting = Task<>::post(clock(), runStart(u"en-AU"_s));
    starting.cancel();
    clock().runUntilIdle();
    EXPECT_EQ(startError, Kind::cancelled);
    EXPECT_EQ(transcriber.processingMessage(), QString());
}

TEST_F(SpeechTranscriberTest, RefusedMicrophoneEndsTheStart) {
    ports.permissions.microphone = 2;
    start();
    EXPECT_EQ(startError, Kind::microphoneDenied);
    EXPECT_EQ(transcriber.errorMessage(),
              u"Allow microphone access in System Settings → Privacy & Security → Microphone."_s);
    EXPECT_EQ(transcriber.processingMessage(), QString());
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(SpeechTranscriberTest, RefusedSpeechEndsTheStart) {
    ports.permissions.speech = 1;
    start();
    EXPECT_EQ(startError, Kind::speechDenied);
    EXPECT_EQ(transcriber.errorMessage(),
              u"Allow speech recognition in System Settings → Privacy & Security → Speech "
              "Recognition."_s);
}

TEST_F(SpeechTranscriberTest, LanguageWithoutARecogniserIsUnavailable) {
    for (const auto &language : {u"fr-FR"_s, u"de-DE"_s, u"es-ES"_s, u"ja-JP"_s}) {
        start(language);
        EXPECT_EQ(startError, Kind::unavailableLanguage);
        EXPECT_EQ(startErrorText, u"Speech recognition is unavailable for this language. Try "
                                  "another language or check your connection."_s);
    }
    ports.speech.isAvailable = false;
    start();
    EXPECT_EQ(startError, Kind::unavailableLanguage);
}

TEST_F(SpeechTranscriberTest, InputWithoutRateOrChannelsLeavesNoFolder) {
    for (const AudioFormat format : {AudioFormat{0, 1}, AudioFormat{48000, 0}}) {
        ports.audioInput.nativeFormat = format;
        start();
        EXPECT_EQ(startError, Kind::unavailableInput);
        EXPECT_EQ(startErrorText, u"No microphone input is available. Check your audio input in "
                                  "System Settings."_s);
        EXPECT_TRUE(ports.recordingFolders().isEmpty());
    }
}

TEST_F(SpeechTranscriberTest, FileThatCannotBeMadeEndsTheStartWithTheSystemsWords) {
    ports.audioFile.openError = u"No space left on device"_s;
    start();
    EXPECT_FALSE(started);
    EXPECT_EQ(transcriber.errorMessage(), u"No space left on device"_s);
    EXPECT_FALSE(ports.audioInput.isRunning());
}

TEST_F(SpeechTranscriberTest, InputThatWillNotStartLeavesNoFolder) {
    ports.audioInput.startError = u"The source is busy"_s;
    start();
    EXPECT_FALSE(started);
    EXPECT_EQ(transcriber.errorMessage(), u"The source is busy"_s);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(SpeechTranscriberTest, EveryRequestGetsAHundredHintsAtMostAndNoEmptyOnes) {
    for (int i = 0; i < 150; ++i)
        hints << QString() << u"hint %1"_s.arg(i);
    start();
    EXPECT_EQ(live()->options.contextualStrings.size(), 100);
    EXPECT_EQ(live()->options.contextualStrings.last(), u"hint 99"_s);
    speak(1s);
    stop();
    EXPECT_EQ(ports.speech.fileRequests().back()->options.contextualStrings.size(), 100);
}

TEST_F(SpeechTranscriberTest, CancelDuringAPromptMakesTheStartThrowAndSetsNoError) {
    ports.permissions.microphone = 0;
    ports.permissions.microphoneAnswer.reset();
    start();
    transcriber.cancel();
    ports.permissions.answerMicrophone(true);
    clock().runUntilIdle();
    EXPECT_EQ(startError, Kind::cancelled);
    EXPECT_EQ(transcriber.errorMessage(), QString());
}

TEST_F(SpeechTranscriberTest, StopDuringAPromptGivesNothingAndTheStartThrows) {
    ports.permissions.speech = 0;
    ports.permissions.speechAnswer.reset();
    start();
    stop();
    EXPECT_EQ(text, QString());
    ports.permissions.answerSpeech(true);
    clock().runUntilIdle();
    EXPECT_EQ(startError, Kind::cancelled);
    EXPECT_EQ(transcriber.errorMessage(), QString());
    start();
    EXPECT_TRUE(started);
}

TEST_F(SpeechTranscriberTest, CallerCancelledDuringAPromptIsToldSo) {
    ports.permissions.microphone = 0;
    ports.permissions.microphoneAnswer.reset();
    start();
    starting.cancel();
    ports.permissions.answerMicrophone(true);
    clock().runUntilIdle();
    EXPECT_EQ(startError, Kind::cancelled);
    EXPECT_EQ(transcriber.errorMessage(), u"Dictation was cancelled."_s);
}

// A sound server that takes its time

TEST_F(SpeechTranscriberTest, StartWaitsForASlowSoundServerAndIsAloneMeanwhile) {
    ports.audioInput.isSlow = true;
    start();
    for (int i = 0; i < 2; ++i) { // for the format, then for the source
        EXPECT_FALSE(started);
        EXPECT_FALSE(transcriber.isRecording());
        EXPECT_EQ(transcriber.processingMessage(), u"Preparing microphone…"_s);
        const auto first = starting;
        start();
        EXPECT_EQ(startError, Kind::alreadyRecording);
        starting = first;
        ports.audioInput.goOn();
        clock().runUntilIdle();
    }
    EXPECT_TRUE(started);
    EXPECT_TRUE(transcriber.isRecording());
}

TEST_F(SpeechTranscriberTest, MicrophoneThatGoesAfterItsFormatWasToldIsNoneFromTheOutset) {
    ports.audioInput.isSlow = true;
    start();
    ports.audioInput.goOn();
    clock().runUntilIdle();
    ports.audioInput.startError = u"There is no microphone."_s;
    ports.audioInput.nativeFormat = AudioFormat();
    ports.audioInput.isSlow = false;
    ports.audioInput.goOn();
    clock().runUntilIdle();
    EXPECT_EQ(startError, Kind::unavailableInput);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

/// The two waits of a start for the sound server.
class SlowStartTest : public SpeechTranscriberFixture, public testing::WithParamInterface<int> {
protected:
    void SetUp() override {
        ports.audioInput.isSlow = true;
        start();
        for (int i = 0; i < GetParam(); ++i) {
            ports.audioInput.goOn();
            clock().runUntilIdle();
        }
        ASSERT_FALSE(starting.isDone());
    }
    void TearDown() override {
        EXPECT_FALSE(ports.audioInput.isRunning());
        EXPECT_TRUE(ports.recordingFolders().isEmpty());
        ports.audioInput.isSlow = false;
        start();
        EXPECT_TRUE(started) << "a next one is not concerned";
    }
    void goOn() {
        ports.audioInput.goOn();
        clock().runUntilIdle();
        EXPECT_EQ(startError, Kind::cancelled);
    }
};
INSTANTIATE_TEST_SUITE_P(Waits, SlowStartTest, testing::Values(0, 1));

TEST_P(SlowStartTest, CancelMakesTheStartThrowAndSetsNoError) {
    transcriber.cancel();
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
    goOn();
    EXPECT_EQ(transcriber.errorMessage(), QString());
}

TEST_P(SlowStartTest, CancelWinsOverAnInputThatWillNotStart) {
    ports.audioInput.startError = u"The source is busy"_s;
    transcriber.cancel();
    goOn();
    EXPECT_EQ(transcriber.errorMessage(), QString());
    ports.audioInput.startError.reset();
}

TEST_P(SlowStartTest, StopGivesNothingAndTheStartThrows) {
    stop();
    EXPECT_EQ(text, QString());
    goOn();
    EXPECT_EQ(transcriber.errorMessage(), QString());
}

TEST_P(SlowStartTest, CancelledCallerIsToldSo) {
    starting.cancel();
    goOn();
    EXPECT_EQ(transcriber.errorMessage(), u"Dictation was cancelled."_s);
}

// The tap

TEST_F(SpeechTranscriberTest, BuffersReachTheFileTheMeterAndTheLiveRequest) {
    start();
    ports.audioInput.deliver(24000, 0.1F);
    clock().runUntilIdle();
    EXPECT_DOUBLE_EQ(transcriber.recordedDuration(), 0.5);
    EXPECT_NEAR(transcriber.level(), 40.0 / 60, 1e-4);
    EXPECT_EQ(ports.audioFile.contents(recordingFolder() + u"/recording.caf"_s)->frameCount(),
              24000);
    EXPECT_EQ(live()->buffers().size(), 1U);
}

TEST_F(SpeechTranscriberTest, WriteFailureStopsTheMicrophoneAndKeepsTheAudio) {
    start();
    speak(1s);
    ports.audioFile.frameLimit = 48000;
    ports.audioInput.deliver(2048, 0.1F);
    clock().runUntilIdle();
    EXPECT_FALSE(transcriber.isRecording());
    EXPECT_EQ(transcriber.errorMessage(), u"Audio capture failed: No space left on device"_s);
    start();
    EXPECT_EQ(startError, Kind::alreadyRecording) << "the session has to be stopped first";
    stop();
    ports.audioFile.frameLimit = 1'000'000;
    EXPECT_FALSE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberTest, SourceThatGoesAwayEndsTheRecordingAndKeepsTheAudio) {
    start();
    speak(1s);
    ports.audioInput.end(u"Entity killed"_s);
    EXPECT_FALSE(transcriber.isRecording());
    EXPECT_EQ(transcriber.errorMessage(), u"Audio capture failed: Entity killed"_s);
    stop();
    answerChunk(u"What was said."_s);
    EXPECT_EQ(text, u"What was said."_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
}

TEST_F(SpeechTranscriberTest, FailureOfTheVeryLastBufferIsNotOverlooked) {
    start();
    speak(1s);
    ports.audioFile.frameLimit = 48000;
    ports.audioInput.tail = std::vector<float>(100, 0.1F);
    stop();
    ports.audioFile.frameLimit = 1'000'000;
    answerChunk(u"Hello."_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
}

double levelOf(const std::vector<float> &samples, int channelCount = 1) {
    return SpeechTranscriber::measureLevel(
        {samples.data(), qsizetype(samples.size()) / channelCount, channelCount});
}

TEST(SpeechTranscriberLevel, ShowsTheTopSixtyDecibels) {
    EXPECT_EQ(levelOf(std::vector<float>(100, 0)), 0);
    EXPECT_EQ(levelOf(std::vector<float>(100, 1)), 1);
    EXPECT_EQ(levelOf(std::vector<float>(100, -2)), 1);
    EXPECT_NEAR(levelOf(std::vector<float>(100, float(std::pow(10, -1.5)))), 0.5, 1e-6);
    EXPECT_NEAR(levelOf(std::vector<float>(100, 0.001F)), 0, 1e-6);
    EXPECT_EQ(levelOf({}), 0);
    EXPECT_EQ(SpeechTranscriber::measureLevel({nullptr, 10, 1}), 0);
}

TEST(SpeechTranscriberLevel, MeasuresTheFirstChannelOnly) {
    EXPECT_EQ(levelOf({1, 0, 1, 0, 1, 0}, 2), 1);
    EXPECT_EQ(levelOf({0, 1, 0, 1, 0, 1}, 2), 0);
}

// Cancelling

TEST_F(SpeechTranscriberTest, CancelRemovesTheFolder) {
    start();
    speak(1s);
    transcriber.cancel();
    EXPECT_FALSE(transcriber.isRecording());
    EXPECT_EQ(transcriber.level(), 0);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
    EXPECT_EQ(transcriber.recoveryAudioURL(), QString());
    EXPECT_EQ(transcriber.processingMessage(), QString());
    start();
    EXPECT_TRUE(started);
}

TEST_F(SpeechTranscriberTest, CancelThatPreservesKeepsTheFileOnOffer) {
    start();
    speak(1s);
    transcriber.cancel(true);
    EXPECT_EQ(transcriber.recoveryAudioURL(), recordingFolder() + u"/recording.caf"_s);
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
    transcriber.cancel(true);
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
}

TEST_F(SpeechTranscriberTest, CancelDuringTheFinishEndsTheStopAndKeepsTheChunkInFlight) {
    start();
    speak(1s);
    stop();
    transcriber.cancel(true);
    clock().runUntilIdle();
    EXPECT_TRUE(text);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_TRUE(QFileInfo::exists(recordingFolder() + u"/chunk-0.caf"_s));
    EXPECT_TRUE(ports.speech.fileRequests().back()->isCancelled);
}

TEST_F(SpeechTranscriberTest, BuffersOfACancelledSessionChangeNothing) {
    start();
    ports.audioInput.deliver(48000, 0.5F);
    transcriber.cancel();
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.recordedDuration(), 0);
    EXPECT_EQ(transcriber.level(), 0);
}

TEST_F(SpeechTranscriberTest, KeptRecordingIsNoLongerOnOfferWhenTheNextOneStarts) {
    start();
    speak(1s);
    transcriber.cancel(true);
    start();
    EXPECT_EQ(transcriber.recoveryAudioURL(), QString());
    EXPECT_EQ(ports.recordingFolders().size(), 2);
}

} // namespace
} // namespace lorvane
