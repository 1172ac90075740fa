// Recordings on the real file system.

#include "CountedSound.h"
#include "SmallDisk.h"

#include "Core/LocalizedError.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Services/AudioRecording.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>
#include <csignal>

#include <sys/mount.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace lorvane {
namespace {

class AudioRecordingDiskTest : public testing::Test {
protected:
    QTemporaryDir folder;
    SndfileAudioFile files;

    AudioRecording make(const AudioFormat &format) { return {files, format, folder.path()}; }

    QString errorOfCut(AudioFile &source, const AudioRecording &recording,
                       const AudioChunk &chunk) {
        try {
            AudioRecording::writeChunk(source, recording.url, chunk, recording.directory);
        } catch (const LocalizedError &error) {
            return error.localizedDescription();
        }
        return {};
    }
};

TEST_F(AudioRecordingDiskTest, EveryFormatKeepsEveryFrameAndIsCutToTheFrame) {
    for (const AudioFormat &format : everyFormat) {
        SCOPED_TRACE(testing::Message() << format.sampleRate << " Hz × " << format.channelCount);
        AudioRecording recording = make(format);
        CountedSound sound(format);
        for (const qsizetype frames : {2048, 1, 2047, 4096, 777})
            recording.append(sound.next(frames));
        while (double(sound.frames()) < 3.3 * format.sampleRate)
            recording.append(sound.next(bufferFrames));
        recording.close();

        const auto whole = files.openForReading(recording.url);
        EXPECT_EQ(whole->format(), format);
        EXPECT_EQ(whole->length(), sound.frames());
        EXPECT_EQ(CountedSound::framesFrom(0, readAll(*whole), format.channelCount),
                  sound.frames());

        const double duration = double(sound.frames()) / format.sampleRate;
        for (const AudioChunk &chunk : AudioChunk::plan(duration, 0.777, 0.1)) {
            const QString path =
                AudioRecording::writeChunk(files, recording.url, chunk, recording.directory);
            const auto cut = files.openForReading(path);
            const auto first = qint64(std::floor(chunk.start * format.sampleRate));
            const qint64 end =
                std::min(qint64(std::ceil(chunk.end * format.sampleRate)), sound.frames());
            EXPECT_EQ(cut->format(), format);
            EXPECT_EQ(cut->length(), end - first);
            EXPECT_EQ(CountedSound::framesFrom(first, readAll(*cut), format.channelCount),
                      end - first);
            EXPECT_EQ(QFileInfo(path).permissions() & 0x777, 0x600);
        }
        EXPECT_EQ(QFileInfo(recording.url).permissions() & 0x777, 0x600);
        EXPECT_EQ(QFileInfo(recording.directory).permissions() & 0x777, 0x700);
    }
}

TEST_F(AudioRecordingDiskTest, ChunkPastTheEndIsEmptyAndOneAcrossItIsCutShort) {
    AudioRecording recording = make({48000, 2});
    CountedSound sound({48000, 2});
    recording.append(sound.next(48000));
    recording.close();
    const auto cut = [&](const AudioChunk &chunk) {
        return files.openForReading(
            AudioRecording::writeChunk(files, recording.url, chunk, recording.directory));
    };
    EXPECT_EQ(cut({7, 1.5, 2.5, 1.5, 2.5})->length(), 0);
    EXPECT_EQ(cut({8, 1.0, 2.5, 1.0, 2.5})->length(), 0);
    EXPECT_EQ(cut({9, 0.75, 2.5, 1.0, 2.5})->length(), 12000);
}

TEST_F(AudioRecordingDiskTest, FullDiskEndsTheRecordingForGoodAndLeavesItReadable) {
    const SmallDisk disk(folder.path(), "size=512k");
    QFile filler(folder.filePath(u"filler"_s));
    ASSERT_TRUE(filler.open(QIODevice::WriteOnly));
    filler.write(QByteArray(200'000, 'x'));
    filler.close();

    AudioRecording recording = make({48000, 1});
    CountedSound sound({48000, 1});
    AudioRecording::Progress progress;
    double good = 0;
    while (!progress.error && sound.frames() < 1'000'000) {
        good = progress.duration;
        progress = recording.append(sound.next(bufferFrames));
    }
    EXPECT_EQ(progress.error, u"Audio capture failed: No space left on device"_s);
    EXPECT_EQ(progress.duration, good);
    EXPECT_GT(good, 1);

    // Room again: but nothing may be written behind the gap.
    filler.remove();
    progress = recording.append(sound.next(bufferFrames));
    EXPECT_EQ(progress.error, u"Audio capture failed: No space left on device"_s);
    EXPECT_EQ(progress.duration, good);
    recording.close();

    const auto whole = files.openForReading(recording.url);
    const auto samples = readAll(*whole);
    EXPECT_EQ(CountedSound::framesFrom(0, samples, 1), qint64(samples.size()));
    EXPECT_GE(double(samples.size()), good * 48000);
    EXPECT_LT(double(samples.size()), good * 48000 + bufferFrames);
    EXPECT_EQ(errorOfCut(files, recording, {0, 0, 1, 0, 1}), QString());
}

TEST_F(AudioRecordingDiskTest, ChunkThatFindsNoRoomGivesTheSystemsWords) {
    const SmallDisk disk(folder.path(), "size=512k");
    AudioRecording recording = make({48000, 1});
    CountedSound sound({48000, 1});
    for (int i = 0; i < 50; ++i)
        recording.append(sound.next(bufferFrames));
    recording.close();
    EXPECT_EQ(recording.failure(), std::nullopt);
    EXPECT_EQ(errorOfCut(files, recording, {0, 0, 2, 0, 2}), u"No space left on device"_s);
    EXPECT_EQ(files.openForReading(recording.url)->length(), 50 * bufferFrames);
}

TEST_F(AudioRecordingDiskTest, FileThatTakesNoMoreLatchesTheFailure) {
    AudioRecording recording = make({44100, 2});
    CountedSound sound({44100, 2});
    EXPECT_FALSE(recording.append(sound.next(bufferFrames)).error);

    // From now on no file of this process may become longer.
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = before;
    limit.rlim_cur = rlim_t(QFileInfo(recording.url).size());
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const AudioRecording::Progress failed = recording.append(sound.next(bufferFrames));
    ::setrlimit(RLIMIT_FSIZE, &before);

    EXPECT_EQ(failed.error, u"Audio capture failed: File too large"_s);
    EXPECT_EQ(recording.append(sound.next(bufferFrames)).error, failed.error);
    EXPECT_EQ(failed.duration, double(bufferFrames) / 44100);
    recording.close();
    EXPECT_EQ(files.openForReading(recording.url)->length(), bufferFrames);
}

TEST_F(AudioRecordingDiskTest, FolderOnADiskThatCannotBeWrittenIsToldByItsName) {
    const SmallDisk disk(folder.path(), "size=64k", MS_RDONLY);
    try {
        make({48000, 1});
        FAIL() << "no error";
    } catch (const LocalizedError &error) {
        EXPECT_TRUE(error.localizedDescription().startsWith(u"The folder “"_s + folder.path()));
        EXPECT_TRUE(error.localizedDescription().endsWith(u"” could not be created."_s));
    }
}

TEST_F(AudioRecordingDiskTest, SourceThatLosesItsEndWhileItIsCutIsAnUnexpectedEnd) {
    /// Files that become shorter once they are open.
    class Shrinking final : public AudioFile {
    public:
        std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                        const AudioFormat &format) override {
            return real_.openForWriting(path, format);
        }
        std::unique_ptr<AudioFileReader> openForReading(const QString &path) override {
            auto reader = real_.openForReading(path);
            QFile::resize(path, QFileInfo(path).size() / 2);
            return reader;
        }

    private:
        SndfileAudioFile real_;
    } shrinking;

    AudioRecording recording = make({48000, 1});
    CountedSound sound({48000, 1});
    recording.append(sound.next(48000));
    recording.close();
    EXPECT_EQ(errorOfCut(shrinking, recording, {3, 0, 1, 0, 1}),
              u"The complete audio chunk could not be read. The original recording was kept for "
              "recovery."_s);
    EXPECT_TRUE(QFileInfo::exists(recording.directory + u"/chunk-3.caf"_s));
}

TEST_F(AudioRecordingDiskTest, SecondCloseAndWhatComesAfterItChangeNothing) {
    AudioRecording recording = make({16000, 1});
    CountedSound sound({16000, 1});
    recording.append(sound.next(1600));
    recording.close();
    const auto contents = [&] {
        QFile file(recording.url);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    };
    const QByteArray before = contents();
    recording.close();
    EXPECT_EQ(recording.append(sound.next(1600)).duration, 0.1);
    recording.close();
    EXPECT_EQ(contents(), before);
}

} // namespace
} // namespace lorvane
