#include "Services/AudioRecording.h"

#include "Fakes/FakePorts.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QUuid>

#include <numeric>

using namespace Qt::StringLiterals;

namespace lorvane {
namespace {

class AudioRecordingTest : public testing::Test {
protected:
    FakePorts ports;
    FakeAudioFile &files = ports.audioFile;
    const AudioFormat format{48000, 2};
    AudioRecording recording{files, format};

    AudioRecording::Progress append(qsizetype frames, float value = 0.5F) {
        const std::vector<float> samples(size_t(frames) * 2, value);
        return recording.append({samples.data(), frames, 2});
    }

    /// A closed recording whose left channel counts the frames.
    void record(qsizetype frames) {
        std::vector<float> samples;
        for (qsizetype frame = 0; frame < frames; ++frame) {
            samples.push_back(float(frame));
            samples.push_back(-1);
        }
        recording.append({samples.data(), frames, 2});
        recording.close();
    }

    QString cut(const AudioChunk &chunk) {
        return AudioRecording::writeChunk(files, recording.url, chunk, recording.directory);
    }
};

constexpr auto ownerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
constexpr auto ownerOnlyFolder = ownerOnly | QFile::ExeOwner | QFile::ExeUser;

TEST_F(AudioRecordingTest, EachHasAPrivateFolderNamedByAnUppercaseUuid) {
    const AudioRecording other(files, format);
    EXPECT_NE(recording.directory, other.directory);
    const QString name = QFileInfo(recording.directory).fileName();
    EXPECT_EQ(name, QUuid::fromString(name).toString(QUuid::WithoutBraces).toUpper());
    EXPECT_EQ(QFileInfo(recording.directory).path(),
              ports.dataHome.filePath(u"Lorvane/Recovery"_s));
    EXPECT_EQ(QFileInfo(recording.directory).permissions(), ownerOnlyFolder);
    EXPECT_EQ(recording.url, recording.directory + u"/recording.caf"_s);
    EXPECT_EQ(QFileInfo(recording.url).permissions(), ownerOnly);
}

TEST_F(AudioRecordingTest, FolderStaysWhenTheFileCannotBeMade) {
    files.openError = u"No space left on device"_s;
    EXPECT_THROW(AudioRecording(files, format), LocalizedError);
    EXPECT_EQ(ports.recordingFolders().size(), 2);
}

TEST_F(AudioRecordingTest, KeepsTheFormatOfTheInput) {
    EXPECT_EQ(files.contents(recording.url)->format, format);
}

TEST_F(AudioRecordingTest, AppendReportsTheDurationSoFar) {
    EXPECT_DOUBLE_EQ(append(24000).duration, 0.5);
    EXPECT_DOUBLE_EQ(append(12000).duration, 0.75);
}

TEST_F(AudioRecordingTest, LiveRequestGetsWhatTheFileGotFromTheNextBufferOn) {
    FakeSpeech speech;
    const auto recognizer = speech.makeRecognizer(u"en-AU"_s);
    const auto live = recognizer->makeBufferRequest(format, {});
    const auto task = recognizer->recognize(live, [](const auto &, const auto &) {});
    append(10, 0.1F);
    recording.setLiveRequest(live);
    append(20, 0.2F);
    recording.setLiveRequest(nullptr);
    append(30, 0.3F);
    const auto buffers = speech.liveRequests().front()->buffers();
    ASSERT_EQ(buffers.size(), 1U);
    EXPECT_EQ(buffers.front(), std::vector<float>(40, 0.2F));
}

TEST_F(AudioRecordingTest, WriteFailureIsLatchedAndKeepsTheBufferFromRecognition) {
    FakeSpeech speech;
    const auto recognizer = speech.makeRecognizer(u"en-AU"_s);
    const auto live = recognizer->makeBufferRequest(format, {});
    const auto task = recognizer->recognize(live, [](const auto &, const auto &) {});
    recording.setLiveRequest(live);
    files.frameLimit = 100;
    EXPECT_FALSE(append(100).error);
    const auto failed = append(10);
    EXPECT_EQ(failed.error, u"Audio capture failed: No space left on device"_s);
    EXPECT_DOUBLE_EQ(failed.duration, 100.0 / 48000);
    // Nothing may be written behind the gap, even when there is room again.
    files.frameLimit = 1000;
    EXPECT_EQ(append(10).error, failed.error);
    EXPECT_EQ(recording.failure(), failed.error);
    EXPECT_EQ(files.contents(recording.url)->frameCount(), 100);
    EXPECT_EQ(speech.liveRequests().front()->buffers().size(), 1U);
}

TEST_F(AudioRecordingTest, AppendAfterCloseChangesNothing) {
    append(480);
    recording.close();
    recording.close();
    EXPECT_FALSE(files.contents(recording.url)->isOpen);
    EXPECT_DOUBLE_EQ(append(480).duration, 0.01);
    EXPECT_EQ(files.contents(recording.url)->frameCount(), 480);
}

TEST_F(AudioRecordingTest, ChunkIsRoundedOutwardToWholeFrames) {
    record(10000);
    const QString path = cut({3, 100.4 / 48000, 9000.2 / 48000, 0, 0});
    EXPECT_EQ(path, recording.directory + u"/chunk-3.caf"_s);
    const auto chunk = files.contents(path);
    EXPECT_EQ(chunk->format, format);
    EXPECT_EQ(chunk->frameCount(), 9001 - 100);
    EXPECT_EQ(chunk->samples.front(), 100);
    EXPECT_EQ(chunk->samples[chunk->samples.size() - 2], 9000);
    EXPECT_EQ(QFileInfo(path).permissions(), ownerOnly);
}

TEST_F(AudioRecordingTest, ChunkPastTheEndIsAValidEmptyFile) {
    record(480);
    EXPECT_EQ(files.contents(cut({0, 5, 6, 5, 6}))->frameCount(), 0);
}

TEST_F(AudioRecordingTest, ChunkThatEndsPastTheEndIsCutShort) {
    record(480);
    EXPECT_EQ(files.contents(cut({0, 0.005, 6, 0, 6}))->frameCount(), 240);
}

TEST_F(AudioRecordingTest, SourceShorterThanItSaysIsAnUnexpectedEnd) {
    record(480);
    files.missingFrames = 100;
    try {
        cut({0, 0, 1, 0, 1});
        FAIL() << "no error";
    } catch (const RecordingError &error) {
        EXPECT_EQ(error.kind, RecordingError::Kind::unexpectedEnd);
        EXPECT_EQ(error.localizedDescription(),
                  u"The complete audio chunk could not be read. The original recording was kept "
                  "for recovery."_s);
    }
    EXPECT_TRUE(QFileInfo::exists(recording.directory + u"/chunk-0.caf"_s));
}

TEST_F(AudioRecordingTest, SourceThatCannotBeOpenedGivesTheSystemsWords) {
    record(480);
    QFile::remove(recording.url);
    EXPECT_THROW(cut({0, 0, 1, 0, 1}), LocalizedError);
}

} // namespace
} // namespace lorvane
