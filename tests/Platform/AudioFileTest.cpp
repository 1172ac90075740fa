#include "Core/LocalizedError.h"
#include "Fakes/FakeAudioFile.h"
#include "Platform/Linux/SndfileAudioFile.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

thread_local long allocationCount = 0;

} // namespace

// Counts what this program allocates, to see what doesn't.
void *operator new(std::size_t size) {
    ++allocationCount;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

namespace lorvane {
namespace {

std::vector<float> noise(qint64 frameCount, int channelCount, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> sample(-1, 1);
    std::vector<float> samples(size_t(frameCount * channelCount));
    for (float &value : samples)
        value = sample(random);
    return samples;
}

AudioBuffer bufferOf(const std::vector<float> &samples, int channelCount) {
    return {samples.data(), qsizetype(samples.size()) / channelCount, channelCount};
}

std::vector<float> readAll(AudioFileReader &reader) {
    const int channels = reader.format().channelCount;
    std::vector<float> all;
    std::vector<float> block(size_t(1000 * channels));
    while (const qsizetype count = reader.read(block.data(), 1000))
        all.insert(all.end(), block.begin(), block.begin() + count * channels);
    return all;
}

template <class Function>
QString errorOf(Function function) {
    try {
        function();
    } catch (const LocalizedError &error) {
        return error.localizedDescription();
    }
    return {};
}

int modeOf(const QString &path) {
    struct stat status {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
    return int(status.st_mode & 07777);
}

/// What holds for all audio files.
template <class Files>
class AudioFileTest : public testing::Test {
protected:
    QString path(const char16_t *name = u"recording.caf") const {
        return folder.filePath(QString::fromUtf16(name));
    }

    QTemporaryDir folder;
    Files files;
};

using AllFiles = testing::Types<FakeAudioFile, SndfileAudioFile>;
TYPED_TEST_SUITE(AudioFileTest, AllFiles);

TYPED_TEST(AudioFileTest, EveryFormatReadsBackAsItWasWritten) {
    for (const double rate : {16000.0, 44100.0, 48000.0, 96000.0}) {
        for (const int channels : {1, 2, 6}) {
            const AudioFormat format{rate, channels};
            const auto samples = noise(5001, channels);
            this->files.openForWriting(this->path(), format)->write(bufferOf(samples, channels));
            const auto reader = this->files.openForReading(this->path());
            EXPECT_EQ(reader->format(), format);
            EXPECT_EQ(reader->length(), 5001);
            EXPECT_EQ(readAll(*reader), samples);
        }
    }
}

TYPED_TEST(AudioFileTest, BuffersAreAppendedInOrder) {
    const auto first = noise(2048, 2, 1);
    const auto second = noise(17, 2, 2);
    {
        const auto writer = this->files.openForWriting(this->path(), {48000, 2});
        writer->write(bufferOf(first, 2));
        writer->write(bufferOf(second, 2));
        writer->write({nullptr, 0, 2});
    }
    auto all = first;
    all.insert(all.end(), second.begin(), second.end());
    EXPECT_EQ(readAll(*this->files.openForReading(this->path())), all);
}

TYPED_TEST(AudioFileTest, AFileWithNothingInItIsValidAndEmpty) {
    this->files.openForWriting(this->path(), {44100, 1});
    const auto reader = this->files.openForReading(this->path());
    EXPECT_EQ(reader->length(), 0);
    EXPECT_EQ(reader->format(), (AudioFormat{44100, 1}));
    reader->seek(0);
    float sample = 0;
    EXPECT_EQ(reader->read(&sample, 1), 0);
}

TYPED_TEST(AudioFileTest, AnExistingFileIsReplaced) {
    this->files.openForWriting(this->path(), {48000, 2})->write(bufferOf(noise(900, 2), 2));
    this->files.openForWriting(this->path(), {16000, 1})->write(bufferOf(noise(10, 1), 1));
    const auto reader = this->files.openForReading(this->path());
    EXPECT_EQ(reader->format(), (AudioFormat{16000, 1}));
    EXPECT_EQ(reader->length(), 10);
}

TYPED_TEST(AudioFileTest, SeekingReadsFromTheFrame) {
    const auto samples = noise(10'000, 2);
    this->files.openForWriting(this->path(), {48000, 2})->write(bufferOf(samples, 2));
    const auto reader = this->files.openForReading(this->path());
    for (const qint64 frame : {0, 1, 4095, 9999, 3, 9990, 10'000}) {
        reader->seek(frame);
        EXPECT_EQ(reader->position(), frame);
        std::vector<float> block(200);
        const qsizetype count = reader->read(block.data(), 100);
        EXPECT_EQ(count, std::min<qint64>(100, 10'000 - frame));
        EXPECT_EQ(reader->position(), frame + count);
        EXPECT_EQ(std::memcmp(block.data(), samples.data() + frame * 2,
                              size_t(count) * 2 * sizeof(float)),
                  0);
    }
}

TYPED_TEST(AudioFileTest, AFrameOutsideTheFileIsRefused) {
    this->files.openForWriting(this->path(), {48000, 1})->write(bufferOf(noise(10, 1), 1));
    const auto reader = this->files.openForReading(this->path());
    reader->seek(4);
    EXPECT_THROW(reader->seek(11), LocalizedError);
    EXPECT_THROW(reader->seek(-1), LocalizedError);
    EXPECT_EQ(reader->position(), 4);
}

TYPED_TEST(AudioFileTest, OnlyTheOwnerMayReadAFile) {
    const auto writer = this->files.openForWriting(this->path(), {48000, 1});
    EXPECT_EQ(modeOf(this->path()), 0600);
}

TYPED_TEST(AudioFileTest, APathOfAnyScriptIsTaken) {
    const QString path = this->path(u"Aufnahme äöü 録音 🎤.caf");
    this->files.openForWriting(path, {48000, 1})->write(bufferOf(noise(10, 1), 1));
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(this->files.openForReading(path)->length(), 10);
}

TYPED_TEST(AudioFileTest, AMissingFolderOrFileIsToldInTheSystemsWords) {
    const QString missing = this->path(u"missing/recording.caf");
    const auto write = [&] { this->files.openForWriting(missing, {48000, 1}); };
    const auto read = [&] { this->files.openForReading(missing); };
    EXPECT_EQ(errorOf(write), QStringLiteral("No such file or directory"));
    EXPECT_EQ(errorOf(read), QStringLiteral("No such file or directory"));
}

TYPED_TEST(AudioFileTest, AFileThatIsNoAudioIsRefused) {
    QFile file(this->path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no audio file, whatever its name says");
    file.close();
    EXPECT_NE(errorOf([&] { this->files.openForReading(this->path()); }), QString());
}

class SndfileAudioFileTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("recording.caf"));
    SndfileAudioFile files;
};

TEST_F(SndfileAudioFileTest, WritesTheCoreAudioFormat) {
    files.openForWriting(path, {48000, 1})->write(bufferOf(noise(10, 1), 1));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.startsWith("caff"));
    EXPECT_TRUE(bytes.contains("lpcm"));
}

TEST_F(SndfileAudioFileTest, TheModeIsPrivateUnderAnyUmaskAndForAFileThatWasPublic) {
    const mode_t before = ::umask(0);
    files.openForWriting(path, {48000, 1});
    EXPECT_EQ(modeOf(path), 0600);
    ::umask(0777);
    files.openForWriting(folder.filePath(QStringLiteral("other.caf")), {48000, 1});
    EXPECT_EQ(modeOf(folder.filePath(QStringLiteral("other.caf"))), 0600);
    ::umask(before);

    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0644), 0);
    files.openForWriting(path, {48000, 1});
    EXPECT_EQ(modeOf(path), 0600);
}

TEST_F(SndfileAudioFileTest, AFormatWithoutChannelsOrRateIsRefused) {
    EXPECT_THROW(files.openForWriting(path, {48000, 0}), LocalizedError);
    EXPECT_THROW(files.openForWriting(path, {0, 1}), LocalizedError);
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(SndfileAudioFileTest, ABufferOfOtherChannelsIsRefused) {
    const auto writer = files.openForWriting(path, {48000, 2});
    EXPECT_THROW(writer->write(bufferOf(noise(10, 1), 1)), LocalizedError);
}

TEST_F(SndfileAudioFileTest, WritingDoesNotAllocate) {
    const auto writer = files.openForWriting(path, {48000, 2});
    const auto samples = noise(2048, 2);
    writer->write(bufferOf(samples, 2));
    const long before = allocationCount;
    for (int i = 0; i < 100; ++i)
        writer->write(bufferOf(samples, 2));
    EXPECT_EQ(allocationCount, before);
}

TEST_F(SndfileAudioFileTest, WhatAKilledProcessHasWrittenReadsBack) {
    for (const int buffers : {0, 1, 7}) {
        const auto samples = noise(2048, 2);
        const pid_t child = ::fork();
        if (child == 0) {
            const auto writer = files.openForWriting(path, {48000, 2});
            for (int i = 0; i < buffers; ++i)
                writer->write(bufferOf(samples, 2));
            ::raise(SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        const auto reader = files.openForReading(path);
        ASSERT_EQ(reader->length(), buffers * 2048);
        const auto all = readAll(*reader);
        for (int i = 0; i < buffers; ++i)
            EXPECT_TRUE(
                std::equal(samples.begin(), samples.end(), all.begin() + i * std::ptrdiff_t(4096)));
    }
}

TEST_F(SndfileAudioFileTest, AFileCanBeOpenedWhileItGrows) {
    const auto samples = noise(4800, 1);
    const auto writer = files.openForWriting(path, {48000, 1});
    std::atomic<bool> isDone = false;
    const std::jthread writing([&] {
        for (int i = 0; i < 3000; ++i)
            writer->write(bufferOf(samples, 1));
        isDone = true;
    });
    while (!isDone)
        EXPECT_NO_THROW(files.openForReading(path));
}

/// Writes until a write throws and gives the text and the number of whole buffers before it.
std::pair<QString, int> fill(SndfileAudioFile &files, const QString &path) {
    const auto samples = noise(2048, 1);
    const auto writer = files.openForWriting(path, {48000, 1});
    for (int i = 0; i < 10'000; ++i) {
        const QString error = errorOf([&] { writer->write(bufferOf(samples, 1)); });
        if (!error.isEmpty())
            return {error, i};
    }
    return {QString(), 10'000};
}

TEST_F(SndfileAudioFileTest, AWriteCutShortByALimitIsToldAndTheRestStaysReadable) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit limit = before;
    limit.rlim_cur = 100'000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto [error, buffers] = fill(files, path);
    ::setrlimit(RLIMIT_FSIZE, &before);

    EXPECT_EQ(error, QStringLiteral("File too large"));
    EXPECT_EQ(buffers, 11);
    const auto reader = files.openForReading(path);
    EXPECT_GE(reader->length(), buffers * 2048);
    EXPECT_GE(readAll(*reader).size(), size_t(buffers) * 2048);
}

TEST_F(SndfileAudioFileTest, AFullDiskIsToldAndTheRestStaysReadable) {
    const QByteArray mountPoint = QFile::encodeName(folder.path());
    if (::geteuid() != 0 || ::mount("tmpfs", mountPoint.constData(), "tmpfs", 0, "size=128k") != 0)
        GTEST_SKIP() << "A small disk can be mounted by root only";
    const auto [error, buffers] = fill(files, path);
    qint64 length = 0;
    QString openError;
    {
        length = files.openForReading(path)->length();
        openError = errorOf([&] {
            files.openForWriting(folder.filePath(QStringLiteral("next.caf")), {48000, 1});
        });
    }
    ASSERT_EQ(::umount(mountPoint.constData()), 0);

    EXPECT_EQ(error, QStringLiteral("No space left on device"));
    EXPECT_GT(buffers, 10);
    EXPECT_GE(length, buffers * 2048);
    EXPECT_EQ(openError, QStringLiteral("No space left on device"));
}

TEST_F(SndfileAudioFileTest, ReadsOtherFormats) {
    QByteArray wave("RIFF\x2c\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x80\x3e\0\0\2\0\x10\0"
                    "data\x08\0\0\0\0\0\0\x40\0\x80\xff\x7f",
                    52);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(wave);
    file.close();
    const auto reader = files.openForReading(path);
    EXPECT_EQ(reader->format(), (AudioFormat{8000, 1}));
    EXPECT_THAT(readAll(*reader), testing::ElementsAre(0.0F, 0.5F, -1.0F, 32767.0F / 32768.0F));
}

TEST(FakeAudioFileTest, AFullDiskKeepsWhatFitted) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("recording.caf"));
    FakeAudioFile files;
    files.frameLimit = 3000;
    const auto writer = files.openForWriting(path, {48000, 1});
    const auto samples = noise(2048, 1);
    writer->write(bufferOf(samples, 1));
    EXPECT_EQ(errorOf([&] { writer->write(bufferOf(samples, 1)); }),
              QStringLiteral("No space left on device"));
    EXPECT_EQ(files.contents(path)->frameCount(), 3000);
}

TEST(FakeAudioFileTest, AFileCanHoldLessThanItSays) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("recording.caf"));
    FakeAudioFile files;
    files.openForWriting(path, {48000, 1})->write(bufferOf(noise(100, 1), 1));
    files.missingFrames = 40;
    const auto reader = files.openForReading(path);
    EXPECT_EQ(reader->length(), 100);
    EXPECT_EQ(readAll(*reader).size(), 60U);
}

} // namespace
} // namespace lorvane
