#include "Services/SpeechTranscriber.h"

#include "Fakes/FakePorts.h"

#include <gtest/gtest.h>

#include <QFileInfo>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Kind = TranscriptionError::Kind;

class SpeechTranscriberTest : public testing::Test {
protected:
    FakePorts ports;
    SpeechTranscriber transcriber{ports};
    Task<> starting;
    QStringList hints;
    bool started = false;
    std::optional<Kind> startError;
    QString startErrorText;
    std::optional<QString> text;

    Async<> runStart(QString language) {
        startError.reset();
        started = false;
        try {
            co_await transcriber.start(language, hints);
            started = true;
        } catch (const TranscriptionError &error) {
            startError = error.kind;
            startErrorText = error.localizedDescription();
        } catch (const LocalizedError &error) {
            startErrorText = error.localizedDescription();
        }
    }

    Async<> runStop() { text = co_await transcriber.stop(); }

    void start(const QString &language = u"en-AU"_s) {
        starting = Task<>::run(runStart(language));
        clock().runUntilIdle();
    }

    void speak(std::chrono::milliseconds time, float level = 0.1F) {
        for (auto left = time.count() * 48; left > 0; left -= 2048)
            ports.audioInput.deliver(std::min<qsizetype>(left, 2048), level);
        clock().runUntilIdle();
    }

    void stop() {
        text.reset();
        Task<>::run(runStop());
        clock().runUntilIdle();
    }

    void answerChunk(const QString &words, double start = 0, double secondsPerWord = 0.5) {
        ports.speech.fileRequests().back()->give(
            FakeSpeech::result(words, true, start, secondsPerWord));
        clock().runUntilIdle();
    }

    FakeSpeech::RequestPointer live() const { return ports.speech.liveRequests().back(); }
    QString recordingFolder() const { return ports.recordingFolders().value(0); }
    FakeClock &clock() { return ports.clock; }
};

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

// The live text

TEST_F(SpeechTranscriberTest, EachSnapshotReplacesTheLiveText) {
    start();
    live()->give(FakeSpeech::result(u"Hello word"_s, false));
    live()->give(FakeSpeech::result(u"Hello world again"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"Hello world again"_s);
}

TEST_F(SpeechTranscriberTest, RotationAfterThirtySecondsKeepsTheText) {
    start();
    const auto first = live();
    first->give(FakeSpeech::result(u"One two"_s, false));
    clock().advance(30s - 1ns);
    EXPECT_EQ(live(), first);
    clock().advance(1ns);
    ASSERT_NE(live(), first);
    EXPECT_TRUE(first->isCancelled);
    live()->give(FakeSpeech::result(u"three"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One two three"_s);
    first->give(FakeSpeech::result(u"stale"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One two three"_s);
}

TEST_F(SpeechTranscriberTest, RotatedRequestGetsTheBuffersFromThenOn) {
    start();
    const auto first = live();
    speak(100ms);
    const auto before = first->buffers().size();
    clock().advance(30s);
    speak(100ms);
    EXPECT_EQ(first->buffers().size(), before);
    EXPECT_EQ(live()->buffers().size(), before);
}

TEST_F(SpeechTranscriberTest, EmptyFirstRequestLeavesNoLeadingSpace) {
    start();
    clock().advance(30s);
    live()->give(FakeSpeech::result(u"late start"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"late start"_s);
}

TEST_F(SpeechTranscriberTest, RequestThatEndsByItselfIsReplacedAfterThreeTenths) {
    start();
    const auto first = live();
    first->give(FakeSpeech::result(u"One."_s, true));
    first->give(FakeSpeech::result(u"after its end"_s, false));
    clock().advance(300ms - 1ns);
    EXPECT_EQ(live(), first);
    EXPECT_EQ(transcriber.transcript(), u"One."_s);
    clock().advance(1ns);
    EXPECT_NE(live(), first);
    live()->give(FakeSpeech::result(u"Two."_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One. Two."_s);
    clock().advance(29s);
    EXPECT_EQ(ports.speech.liveRequests().size(), 2U) << "the first rotation was still pending";
}

TEST_F(SpeechTranscriberTest, LiveErrorIsJustAnotherEnd) {
    start();
    live()->giveAndFail(FakeSpeech::result(u"One"_s, false), u"Broken."_s);
    clock().advance(300ms);
    EXPECT_EQ(ports.speech.liveRequests().size(), 2U);
    EXPECT_EQ(transcriber.errorMessage(), QString());
    EXPECT_EQ(transcriber.transcript(), u"One"_s);
}

TEST_F(SpeechTranscriberTest, NothingRotatesAfterTheStop) {
    start();
    live()->give(FakeSpeech::result(u"One"_s, true));
    speak(1s);
    stop();
    clock().advance(60s);
    EXPECT_EQ(ports.speech.liveRequests().size(), 1U);
    EXPECT_TRUE(live()->isCancelled);
}

// Finishing

TEST_F(SpeechTranscriberTest, ConfirmedTranscriptRemovesTheFolder) {
    start();
    speak(1500ms);
    const QString folder = recordingFolder();
    stop();
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 1 of 1…"_s);
    EXPECT_DOUBLE_EQ(transcriber.recordedDuration(), 1.5);
    EXPECT_TRUE(QFileInfo::exists(folder + u"/chunk-0.caf"_s));
    answerChunk(u"Hello, world."_s);
    EXPECT_EQ(text, u"Hello, world."_s);
    EXPECT_EQ(transcriber.transcript(), u"Hello, world."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.processingMessage(), u"Transcription complete"_s);
    EXPECT_EQ(transcriber.recoveryAudioURL(), QString());
    EXPECT_FALSE(QFileInfo::exists(folder));
    EXPECT_TRUE(QFileInfo::exists(QFileInfo(folder).path()));
}

TEST_F(SpeechTranscriberTest, LastWordsThatTheInputHeldBackAreInTheFile) {
    start();
    speak(1s);
    ports.audioInput.tail = std::vector<float>(480, 0.1F);
    stop();
    EXPECT_DOUBLE_EQ(transcriber.recordedDuration(), 1.01);
}

TEST_F(SpeechTranscriberTest, LongRecordingIsRecognisedInChunksAndStitched) {
    start();
    speak(61500ms);
    stop();
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 1 of 3…"_s);
    const auto chunkLength = [this](int index) {
        const QString path = recordingFolder() + u"/chunk-%1.caf"_s.arg(index);
        return double(ports.audioFile.contents(path)->frameCount()) / 48000;
    };
    EXPECT_DOUBLE_EQ(chunkLength(0), 31);
    const auto context = [this] { return ports.speech.fileRequests().back()->options.context; };
    EXPECT_EQ(context().before, 0) << "the recording begins here";
    EXPECT_EQ(context().after, 1);
    answerChunk(u"and then we left"_s, 27.9, 0.5);
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 2 of 3…"_s);
    EXPECT_EQ(context().before, 1);
    EXPECT_EQ(context().after, 1);
    EXPECT_EQ(transcriber.transcript(), u"and then we left"_s);
    EXPECT_FALSE(QFileInfo::exists(recordingFolder() + u"/chunk-0.caf"_s));
    // The chunk begins at 29 s: "left" stands at 29.5 s in both.
    answerChunk(u"left the building"_s, 0.5, 0.5);
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 3 of 3…"_s);
    EXPECT_EQ(context().before, 1);
    EXPECT_EQ(context().after, 0) << "the recording ends here";
    answerChunk(u"quietly"_s, 1.5, 0.5);
    EXPECT_EQ(text, u"and then we left the building quietly"_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberTest, FailedChunkLeavesAHoleWithAName) {
    start();
    speak(61500ms);
    stop();
    answerChunk(u"first"_s);
    ports.speech.fileRequests().back()->fail(u"The recogniser broke."_s);
    clock().runUntilIdle();
    answerChunk(u"third"_s, 1.5);
    EXPECT_EQ(text, u"first third"_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.processingMessage(), u"Recording kept for recovery"_s);
    const QString url = transcriber.recoveryAudioURL();
    EXPECT_TRUE(QFileInfo::exists(url));
    EXPECT_EQ(transcriber.errorMessage(),
              u"The complete transcription could not be confirmed. Automatic paste was skipped. "
              "Your original audio is saved at "_s +
                  url + u". Part 2: The recogniser broke."_s);
}

TEST_F(SpeechTranscriberTest, RecordingThatIsGoneFromTheDiskMakesEveryChunkAProblem) {
    start();
    speak(31s);
    QFile::remove(recordingFolder() + u"/recording.caf"_s);
    stop();
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.errorMessage().contains(u". Part 1: "_s));
    EXPECT_TRUE(transcriber.errorMessage().contains(u" Part 2: "_s));
    EXPECT_FALSE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberTest, TextMuchShorterThanTheLiveTextIsNotConfirmed) {
    start();
    speak(5s);
    live()->give(FakeSpeech::result(u"a b c d e f g h i j k l"_s, false));
    clock().runUntilIdle();
    stop();
    answerChunk(u"a b c d e f g"_s);
    EXPECT_EQ(text, u"a b c d e f g"_s) << "the live text is never substituted";
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_TRUE(transcriber.errorMessage().endsWith(
        u"The final result was unexpectedly shorter than the live transcript; the audio was kept "
        "instead of accepting a potentially truncated result."_s));
}

TEST_F(SpeechTranscriberTest, RecognitionThatHangsRunsIntoItsDeadline) {
    start();
    speak(5s);
    stop();
    clock().advance(120s);
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.errorMessage().endsWith(
        u"Part 1: Recognition timed out before a complete result was available."_s));
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
}

TEST_F(SpeechTranscriberTest, RecordingWithoutFramesIsConfirmedAsEmpty) {
    start();
    stop();
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(SpeechTranscriberTest, SecondStopJoinsTheRunningFinish) {
    start();
    speak(1s);
    std::optional<QString> other;
    stop();
    const auto join = [](SpeechTranscriber &joined, std::optional<QString> &result) -> Async<> {
        result = co_await joined.stop();
    };
    Task<>::run(join(transcriber, other));
    clock().runUntilIdle();
    EXPECT_FALSE(other);
    answerChunk(u"Hello."_s);
    EXPECT_EQ(text, u"Hello."_s);
    EXPECT_EQ(other, u"Hello."_s);
    EXPECT_EQ(ports.speech.fileRequests().size(), 1U);
}

TEST_F(SpeechTranscriberTest, StopWhenIdleGivesTheTextThatStands) {
    start();
    speak(1s);
    stop();
    answerChunk(u"Hello."_s);
    stop();
    EXPECT_EQ(text, u"Hello."_s);
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
