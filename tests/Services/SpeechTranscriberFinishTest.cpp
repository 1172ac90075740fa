#include "SmallDisk.h"
#include "SpeechTranscriberFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using SpeechTranscriberFinishTest = SpeechTranscriberFixture;

/// Whether the process still has a file open that has no name any more.
bool holdsDeleted(const QString &path) {
    const QDir open(u"/proc/self/fd"_s);
    const QStringList numbers = open.entryList(QDir::AllEntries | QDir::System);
    return std::any_of(numbers.begin(), numbers.end(), [&](const QString &number) {
        return QFile::symLinkTarget(open.filePath(number)) == path + u" (deleted)"_s;
    });
}

TEST_F(SpeechTranscriberFinishTest, ConfirmedTranscriptRemovesTheFolder) {
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

TEST_F(SpeechTranscriberFinishTest, AudioGoesAtOnceButItsSpaceIsGivenBackInTheBackground) {
    for (const bool isCancelled : {false, true}) {
        SCOPED_TRACE(isCancelled);
        start();
        speak(1s);
        const QString folder = recordingFolder();
        const QString url = folder + u"/recording.caf"_s;
        if (isCancelled) {
            clock().holdsBackground = true;
            transcriber.cancel();
        } else {
            stop();
            clock().holdsBackground = true;
            answerChunk(u"Hello."_s);
        }
        EXPECT_FALSE(QFileInfo::exists(folder));
        EXPECT_TRUE(holdsDeleted(url)) << "the main thread would wait for the file system";
        clock().holdsBackground = false;
        clock().runUntilIdle();
        EXPECT_FALSE(holdsDeleted(url));
    }
}

TEST_F(SpeechTranscriberFinishTest, AudioThatCannotBeRemovedIsToldAndTheTextStaysConfirmed) {
    start();
    speak(1s);
    const QString folder = recordingFolder();
    ASSERT_TRUE(QDir(folder).mkdir(u"busy"_s));
    const SmallDisk busy(folder + u"/busy"_s, "size=64k");
    stop();
    answerChunk(u"Hello."_s);
    EXPECT_EQ(text, u"Hello."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.processingMessage(), u"Transcription complete"_s);
    EXPECT_EQ(transcriber.recoveryAudioURL(), QString());
    EXPECT_EQ(transcriber.errorMessage(),
              u"Transcription is complete, but the temporary audio could not be removed: "_s +
                  folder + u"/recording.caf"_s);
    EXPECT_TRUE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberFinishTest, CancelAfterTheEndTakesBackTheOutcomeOnly) {
    start();
    speak(61s);
    stop();
    answerChunk(u"first"_s);
    ports.speech.fileRequests().back()->fail(u"The recogniser broke."_s);
    clock().runUntilIdle();
    answerChunk(u"third"_s, 1.5);
    const QString url = transcriber.recoveryAudioURL();
    const QString message = transcriber.errorMessage();
    transcriber.cancel();
    EXPECT_EQ(transcriber.processingMessage(), QString());
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.transcript(), u"first third"_s);
    EXPECT_EQ(transcriber.recoveryAudioURL(), url);
    EXPECT_EQ(transcriber.errorMessage(), message);
    EXPECT_EQ(transcriber.recordedDuration(), 61);
    EXPECT_TRUE(QFileInfo::exists(url));
}

TEST_F(SpeechTranscriberFinishTest, LastWordsThatTheInputHeldBackAreInTheFile) {
    start();
    speak(1s);
    ports.audioInput.tail = std::vector<float>(480, 0.1F);
    stop();
    EXPECT_DOUBLE_EQ(transcriber.recordedDuration(), 1.01);
}

TEST_F(SpeechTranscriberFinishTest, WordsThatAreOnTheirWayAreWaitedFor) {
    start();
    speak(1s);
    ports.audioInput.isSlow = true;
    stop();
    EXPECT_FALSE(transcriber.isRecording());
    EXPECT_EQ(transcriber.level(), 0);
    start();
    EXPECT_EQ(startError, TranscriptionError::Kind::alreadyRecording);
    std::optional<QString> joined;
    const auto join = [](SpeechTranscriber &stopped, std::optional<QString> &result) -> Async<> {
        result = co_await stopped.stop();
    };
    Task<>::run(join(transcriber, joined));
    speak(100ms);
    EXPECT_EQ(transcriber.level(), 0) << "the meter is at rest";
    EXPECT_EQ(transcriber.recordedDuration(), 1);
    EXPECT_TRUE(ports.speech.fileRequests().empty());

    ports.audioInput.goOn();
    clock().runUntilIdle();
    EXPECT_DOUBLE_EQ(transcriber.recordedDuration(), 1.1);
    answerChunk(u"Hello."_s);
    EXPECT_EQ(text, u"Hello."_s);
    EXPECT_EQ(joined, u"Hello."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberFinishTest, CancelWhileTheLastWordsAreWaitedForEndsTheStop) {
    for (const bool preserves : {false, true}) {
        ports.audioInput.isSlow = false;
        start();
        speak(1s);
        ports.audioInput.isSlow = true;
        stop();
        transcriber.cancel(preserves);
        EXPECT_FALSE(ports.audioInput.isRunning());
        EXPECT_EQ(ports.recordingFolders().isEmpty(), !preserves);
        clock().runUntilIdle();
        EXPECT_EQ(text, QString());
        EXPECT_TRUE(ports.speech.fileRequests().empty());
        EXPECT_EQ(transcriber.processingMessage(), QString());
    }
}

TEST_F(SpeechTranscriberFinishTest, MicrophoneThatGoesWhileTheLastWordsAreWaitedForIsNoProblem) {
    start();
    speak(1s);
    ports.audioInput.isSlow = true;
    stop();
    ports.audioInput.end(u"Entity killed"_s);
    ports.audioInput.goOn();
    clock().runUntilIdle();
    answerChunk(u"Hello."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.errorMessage(), QString());
}

TEST_F(SpeechTranscriberFinishTest, LongRecordingIsRecognisedInChunksAndStitched) {
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
    EXPECT_TRUE(context().written.isEmpty());
    answerChunk(u"and then we left"_s, 27.9, 0.5);
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 2 of 3…"_s);
    EXPECT_EQ(context().before, 1);
    EXPECT_EQ(context().after, 1);
    ASSERT_EQ(context().written.size(), 1) << "“left” alone is in both pieces";
    EXPECT_EQ(context().written.front().text, u"left"_s);
    EXPECT_NEAR(context().written.front().start, 0.4, 1e-9);
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

TEST_F(SpeechTranscriberFinishTest, FailedChunkLeavesAHoleWithAName) {
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

TEST_F(SpeechTranscriberFinishTest, RecordingThatIsGoneFromTheDiskMakesEveryChunkAProblem) {
    start();
    speak(31s);
    QFile::remove(recordingFolder() + u"/recording.caf"_s);
    stop();
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.errorMessage().contains(u". Part 1: "_s));
    EXPECT_TRUE(transcriber.errorMessage().contains(u" Part 2: "_s));
    EXPECT_FALSE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberFinishTest, TextMuchShorterThanTheLiveTextIsNotConfirmed) {
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

TEST_F(SpeechTranscriberFinishTest, RecognitionThatHangsRunsIntoItsDeadline) {
    start();
    speak(5s);
    stop();
    clock().advance(120s);
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.errorMessage().endsWith(
        u"Part 1: Recognition timed out before a complete result was available."_s));
    EXPECT_TRUE(QFileInfo::exists(transcriber.recoveryAudioURL()));
}

TEST_F(SpeechTranscriberFinishTest, RecordingWithoutFramesIsConfirmedAsEmpty) {
    start();
    stop();
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(SpeechTranscriberFinishTest, SecondStopJoinsTheRunningFinish) {
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

TEST_F(SpeechTranscriberFinishTest, StopWhenIdleGivesTheTextThatStands) {
    start();
    speak(1s);
    stop();
    answerChunk(u"Hello."_s);
    stop();
    EXPECT_EQ(text, u"Hello."_s);
}

} // namespace
} // namespace lorvane
