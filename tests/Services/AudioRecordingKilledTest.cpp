// A recording whose process is killed at any moment can be read up to within its last buffer.

#include "CountedSound.h"

#include "Platform/Linux/SndfileAudioFile.h"
#include "Services/AudioRecording.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <ctime>
#include <iostream>
#include <new>
#include <random>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace lorvane {
namespace {

/// The kernel kills this process after so many microseconds, wherever it is then.
void dieAfter(long microseconds) {
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    timer_t timer;
    itimerspec time{};
    time.it_value.tv_nsec = microseconds * 1000 + 1;
    if (::timer_create(CLOCK_MONOTONIC, &event, &timer) != 0 ||
        ::timer_settime(timer, 0, &time, nullptr) != 0)
        ::_exit(1);
}

TEST(AudioRecordingKilled, TwoHundredTimesReadsBackToWithinTheLastBuffer) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto draw = [&](long end) { return std::uniform_int_distribution<long>(0, end)(random); };

    // How many frames have been appended, told across the processes.
    void *shared = ::mmap(nullptr, sizeof(std::atomic<qint64>), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto *appended = new (shared) std::atomic<qint64>(0);

    qint64 total = 0;
    int inTheMiddle = 0;
    for (int round = 0; round < 200; ++round) {
        const QTemporaryDir folder;
        const AudioFormat format = everyFormat[draw(7)];
        const long delay = draw(10'000);
        *appended = 0;
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            SndfileAudioFile files;
            AudioRecording recording(files, format, folder.path());
            CountedSound sound(format);
            dieAfter(delay);
            for (;;) {
                recording.append(sound.next(bufferFrames));
                *appended = sound.frames();
            }
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

        const QDir parent(folder.path());
        const QString name = parent.entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
        SndfileAudioFile files;
        const auto left = files.openForReading(parent.filePath(name + u"/recording.caf"_s));
        ASSERT_EQ(left->format(), format);
        const auto samples = readAll(*left);
        const qint64 frames = qint64(samples.size()) / format.channelCount;
        ASSERT_EQ(CountedSound::framesFrom(0, samples, format.channelCount), frames);
        ASSERT_GE(frames, *appended) << "a whole buffer is lost";
        ASSERT_LE(frames, *appended + bufferFrames);
        inTheMiddle += frames != *appended;
        total += frames / bufferFrames;
    }
    std::cout << total << " buffers in 200 processes; " << inTheMiddle
              << " killed while a buffer was being written\n";
    EXPECT_GT(total, 200);
    ::munmap(shared, sizeof(std::atomic<qint64>));
}

} // namespace
} // namespace lorvane
