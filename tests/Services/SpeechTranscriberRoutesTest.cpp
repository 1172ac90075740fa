// Which of the two ways from the file to the text is taken, and what is left of the other.

#include "SpeechTranscriberFixture.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

class SpeechTranscriberRoutesTest : public SpeechTranscriberFixture {
protected:
    SpeechTranscriberRoutesTest() { ports.speech.hasAnalyzer = true; }

    /// A recording of five seconds that is being transcribed.
    FakeSpeech::AnalysisPointer record(const QString &liveText = {},
                                       std::chrono::milliseconds length = 5s) {
        start();
        speak(length);
        if (!liveText.isEmpty())
            live()->give(FakeSpeech::result(liveText, false));
        clock().runUntilIdle();
        folder = recordingFolder();
        stop();
        return ports.speech.analyses.back();
    }

    void answerWhole(const QString &words) {
        analysis()->give(words, 0, 5);
        analysis()->end();
        clock().runUntilIdle();
    }

    FakeSpeech::AnalysisPointer analysis() const { return ports.speech.analyses.back(); }
    size_t chunksAsked() const { return ports.speech.fileRequests().size(); }

    /// A second of speech with a transcriber that may go away meanwhile.
    Async<> dictate(SpeechTranscriber &mortal) {
        const QStringList noHints;
        co_await mortal.start(u"en-AU"_s, noHints);
        ports.audioInput.deliver(48000, 0.1F);
        co_await mortal.stop();
    }

    QString folder;
};

const QString twelveWords = u"a b c d e f g h i j k l"_s;
const QString tooShort =
    u"The final result was unexpectedly shorter than the live transcript; the audio was kept "
    "instead of accepting a potentially truncated result."_s;

TEST_F(SpeechTranscriberRoutesTest, RecordingIsFollowedUntilItsOutcomeIsSettled) {
    hints = {u"kubectl"_s};
    record();
    ASSERT_EQ(ports.speech.followings.size(), 1U);
    const auto following = ports.speech.followings.back();
    EXPECT_EQ(following->path, folder + u"/recording.caf"_s);
    EXPECT_EQ(following->localeIdentifier, u"en-AU"_s);
    EXPECT_EQ(following->contextualStrings, hints);
    EXPECT_FALSE(following->isCancelled) << "the analysis goes on from it";
    answerWhole(u"Hello, world."_s);
    EXPECT_TRUE(following->isCancelled);

    start();
    EXPECT_FALSE(ports.speech.followings.back()->isCancelled);
    transcriber.cancel();
    EXPECT_TRUE(ports.speech.followings.back()->isCancelled);
}

TEST_F(SpeechTranscriberRoutesTest, InstalledModelGetsTheWholeFileAndNoChunkIsCut) {
    hints = {u"kubectl"_s};
    record();
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing the full recording…"_s);
    EXPECT_EQ(analysis()->path, folder + u"/recording.caf"_s);
    EXPECT_EQ(analysis()->localeIdentifier, u"en-AU"_s);
    EXPECT_EQ(analysis()->contextualStrings, hints);
    analysis()->give(u"Hello,"_s, 0, 1);
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"Hello,"_s) << "the text grows on the screen";
    analysis()->give(u"world."_s, 1, 1);
    analysis()->end();
    clock().runUntilIdle();
    EXPECT_EQ(text, u"Hello, world."_s);
    EXPECT_EQ(transcriber.transcript(), u"Hello, world."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.processingMessage(), u"Transcription complete"_s);
    EXPECT_EQ(transcriber.errorMessage(), QString());
    EXPECT_EQ(chunksAsked(), 0U);
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberRoutesTest, WithoutTheModelTheChunksAreTaken) {
    ports.speech.hasAnalyzer = false;
    start();
    speak(5s);
    stop();
    EXPECT_EQ(chunksAsked(), 1U);
    answerChunk(u"Hello."_s);
    EXPECT_EQ(text, u"Hello."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberRoutesTest, FailureOfTheFirstRouteLeavesNoTrace) {
    record();
    analysis()->give(u"Half of"_s, 0, 2);
    clock().runUntilIdle();
    analysis()->fail(u"The model broke."_s);
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.processingMessage(), u"Transcribing part 1 of 1…"_s);
    EXPECT_EQ(transcriber.transcript(), u"Half of"_s) << "until the first part overwrites it";
    answerChunk(u"All of it."_s);
    EXPECT_EQ(text, u"All of it."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.errorMessage(), QString());
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberRoutesTest, FirstRouteThatHangsMakesWayAfterItsWatch) {
    record()->isDeaf = true;
    clock().advance(120s - 1ns);
    EXPECT_EQ(chunksAsked(), 0U);
    clock().advance(1ns);
    ASSERT_EQ(chunksAsked(), 1U);
    answerChunk(u"All of it."_s);
    EXPECT_EQ(text, u"All of it."_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberRoutesTest, BothRoutesThatHangKeepTheAudio) {
    record(twelveWords)->isDeaf = true;
    clock().advance(240s);
    EXPECT_EQ(text, QString());
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_TRUE(transcriber.errorMessage().endsWith(
        u". Part 1: Recognition timed out before a complete result was available. "_s + tooShort));
    EXPECT_TRUE(QFileInfo::exists(folder + u"/recording.caf"_s));
    EXPECT_FALSE(QFileInfo::exists(folder + u"/chunk-0.caf"_s));
}

TEST_F(SpeechTranscriberRoutesTest, TextOfTheFirstRouteThatIsFarTooShortIsThrownAway) {
    record(twelveWords);
    answerWhole(u"a b c d e f g"_s);
    ASSERT_EQ(chunksAsked(), 1U);
    answerChunk(twelveWords);
    EXPECT_EQ(text, twelveWords);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.errorMessage(), QString());
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberRoutesTest, BothRoutesFarTooShortKeepTheAudioAndTheTextOfTheChunks) {
    record(twelveWords);
    answerWhole(u"whole"_s);
    answerChunk(u"chunk"_s);
    EXPECT_EQ(text, u"chunk"_s);
    EXPECT_EQ(transcriber.transcript(), u"chunk"_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.processingMessage(), u"Recording kept for recovery"_s);
    EXPECT_EQ(transcriber.recoveryAudioURL(), folder + u"/recording.caf"_s);
    EXPECT_EQ(transcriber.errorMessage(),
              u"The complete transcription could not be confirmed. Automatic paste was skipped. "
              "Your original audio is saved at "_s +
                  folder + u"/recording.caf. "_s + tooShort);
    EXPECT_TRUE(QFileInfo::exists(folder + u"/recording.caf"_s));
}

TEST_F(SpeechTranscriberRoutesTest, SixtyPercentOfTheLiveTextAreEnough) {
    record(twelveWords);
    answerWhole(u"a b c d e f g h"_s);
    EXPECT_EQ(text, u"a b c d e f g h"_s);
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(chunksAsked(), 0U);
}

TEST_F(SpeechTranscriberRoutesTest, EmptyTextIsConfirmedWhenTheLiveTextWasShort) {
    record(u"a b c d e f g h i j k"_s);
    answerWhole(u""_s);
    EXPECT_EQ(text, QString());
    EXPECT_EQ(transcriber.transcript(), QString());
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_EQ(chunksAsked(), 0U);
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberRoutesTest, RecordingWithoutFramesTakesTheFirstRouteToo) {
    record({}, 0s);
    EXPECT_EQ(transcriber.recordedDuration(), 0);
    answerWhole(u""_s);
    EXPECT_EQ(text, QString());
    EXPECT_TRUE(transcriber.transcriptionComplete());
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(SpeechTranscriberRoutesTest, CaptureFailureKeepsTheAudioOfAPerfectText) {
    start();
    speak(1s);
    folder = recordingFolder();
    ports.audioInput.end(u"The microphone was disconnected."_s);
    stop();
    answerWhole(u"What was said."_s);
    EXPECT_EQ(text, u"What was said."_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
    EXPECT_EQ(transcriber.errorMessage(),
              u"The complete transcription could not be confirmed. Automatic paste was skipped. "
              "Your original audio is saved at "_s +
                  folder +
                  u"/recording.caf. Audio capture failed: The microphone was disconnected."_s);
}

TEST_F(SpeechTranscriberRoutesTest, CancelDuringTheFirstRouteAbandonsItAndCutsNoChunk) {
    for (const bool preserve : {false, true}) {
        record();
        analysis()->give(u"Half of"_s, 0, 2);
        clock().runUntilIdle();
        transcriber.cancel(preserve);
        EXPECT_TRUE(analysis()->isCancelled);
        analysis()->give(u"late"_s, 2, 2);
        analysis()->end();
        clock().runUntilIdle();
        EXPECT_EQ(text, u"Half of"_s);
        EXPECT_EQ(transcriber.transcript(), u"Half of"_s);
        EXPECT_FALSE(transcriber.transcriptionComplete());
        EXPECT_EQ(transcriber.processingMessage(), QString());
        EXPECT_EQ(chunksAsked(), 0U);
        EXPECT_EQ(QFileInfo::exists(folder + u"/recording.caf"_s), preserve);
        EXPECT_EQ(clock().timerCount(), 0);
    }
}

TEST_F(SpeechTranscriberRoutesTest, StaleAnalysisTouchesNothingOfTheNextSession) {
    const auto stale = record();
    stale->isDeaf = true;
    transcriber.cancel();
    start();
    stale->give(u"stale"_s, 0, 2);
    stale->end();
    clock().runUntilIdle();
    EXPECT_TRUE(started);
    EXPECT_EQ(transcriber.transcript(), QString());
    EXPECT_EQ(transcriber.processingMessage(), u"Recording"_s);
    EXPECT_FALSE(transcriber.transcriptionComplete());
}

TEST_F(SpeechTranscriberRoutesTest, TranscriberThatGoesDuringTheFirstRouteKeepsTheAudio) {
    auto mortal = std::make_unique<SpeechTranscriber>(ports);
    const auto task = Task<>::run(dictate(*mortal));
    clock().runUntilIdle();
    mortal.reset();
    EXPECT_TRUE(analysis()->isCancelled);
    clock().runUntilIdle();
    EXPECT_TRUE(task.isDone());
    EXPECT_TRUE(QFileInfo::exists(recordingFolder() + u"/recording.caf"_s));
    EXPECT_EQ(clock().timerCount(), 0);
}

// The finish begins in a turn of its own, and much can happen before that.
TEST_F(SpeechTranscriberRoutesTest, FinishThatIsCancelledBeforeItBeginsShowsNothing) {
    start();
    speak(1s);
    text.reset();
    const auto stopping = Task<>::run(runStop());
    transcriber.cancel();
    clock().runUntilIdle();
    EXPECT_EQ(text, QString());
    EXPECT_EQ(transcriber.processingMessage(), QString());
    EXPECT_TRUE(ports.speech.analyses.empty());
}

TEST_F(SpeechTranscriberRoutesTest, FinishOfATranscriberThatGoesBeforeItBeginsDoesNoHarm) {
    auto mortal = std::make_unique<SpeechTranscriber>(ports);
    const auto task = Task<>::run(dictate(*mortal));
    mortal.reset();
    clock().runUntilIdle();
    EXPECT_TRUE(task.isDone());
    EXPECT_TRUE(ports.speech.analyses.empty());
    EXPECT_TRUE(QFileInfo::exists(recordingFolder() + u"/recording.caf"_s));
}

// A cut runs in the background: whatever happens meanwhile, it must not disturb what follows.
TEST_F(SpeechTranscriberRoutesTest, CutThatOutlivesItsSessionIsNotRecognised) {
    ports.speech.hasAnalyzer = false;
    start();
    speak(1s);
    clock().holdsBackground = true;
    stop();
    transcriber.cancel();
    start();
    clock().holdsBackground = false;
    clock().runUntilIdle();
    EXPECT_EQ(chunksAsked(), 0U);
    EXPECT_EQ(transcriber.processingMessage(), u"Recording"_s);
}

TEST_F(SpeechTranscriberRoutesTest, CutThatOutlivesTheTranscriberDoesNoHarm) {
    ports.speech.hasAnalyzer = false;
    auto mortal = std::make_unique<SpeechTranscriber>(ports);
    const auto task = Task<>::run(dictate(*mortal));
    clock().holdsBackground = true;
    clock().runUntilIdle();
    mortal.reset();
    clock().holdsBackground = false;
    clock().runUntilIdle();
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(chunksAsked(), 0U);
}

} // namespace
} // namespace lorvane
