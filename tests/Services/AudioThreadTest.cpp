// What the audio thread does with a buffer once a recording runs: the real recording, live request
// and clock, on a thread that is looked at closely.

#include "CountedSound.h"
#include "Fakes/FakePorts.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Platform/Linux/SystemClock.h"
#include "Services/SpeechTranscriber.h"
#include "Speech/LiveRequest.h"
#include "ThreadAccount.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cmath>
#include <span>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

constexpr AudioFormat stereo{48000, 2};

/// Gives real live requests and never says a word.
class ListeningSpeech final : public Speech {
public:
    std::vector<std::shared_ptr<LiveRequest>> requests;

    std::shared_ptr<SpeechRecognizer> makeRecognizer(const QString &) override {
        return std::make_shared<Recognizer>(*this);
    }
    std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &, const QStringList &) override {
        return nullptr;
    }
    std::unique_ptr<SpeechTask> followRecording(const QString &, const QString &,
                                                const QStringList &) override {
        return nullptr;
    }

private:
    class Task final : public SpeechTask {
        void cancel() override {}
    };

    class Recognizer final : public SpeechRecognizer {
    public:
        explicit Recognizer(ListeningSpeech &speech) : speech_(speech) {}
        QString localeIdentifier() const override { return u"en-AU"_s; }
        bool isAvailable() const override { return true; }
        bool supportsOnDeviceRecognition() const override { return true; }
        std::shared_ptr<SpeechBufferRequest> makeBufferRequest(const AudioFormat &format,
                                                               const SpeechOptions &) override {
            speech_.requests.push_back(std::make_shared<LiveRequest>(format));
            return speech_.requests.back();
        }
        std::unique_ptr<SpeechTask> recognize(std::shared_ptr<SpeechBufferRequest>,
                                              SpeechHandler) override {
            return std::make_unique<Task>();
        }
        std::unique_ptr<SpeechTask> recognize(const QString &, const SpeechOptions &,
                                              SpeechHandler) override {
            return std::make_unique<Task>();
        }

    private:
        ListeningSpeech &speech_;
    };
};

class AudioThreadTest : public testing::Test {
protected:
    int argumentCount = 0;
    QCoreApplication application{argumentCount, nullptr};
    FakePorts fakes;
    SystemClock clock;
    SndfileAudioFile files;
    ListeningSpeech speech;

    Ports ports() {
        return {clock,
                fakes.audioInput,
                files,
                speech,
                permissions,
                fakes.hotKey,
                fakes.workspace,
                fakes.accessibility,
                fakes.keyboard,
                fakes.pasteboard,
                fakes.screens,
                fakes.overlayPanel,
                fakes.userDefaults,
                fakes.savePanel};
    }

    bool waitUntil(const std::function<bool()> &condition) {
        QTimer tick;
        tick.start(2ms);
        QElapsedTimer elapsed;
        elapsed.start();
        while (!condition() && elapsed.elapsed() < 10'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return condition();
    }

    void start(SpeechTranscriber &transcriber) {
        fakes.audioInput.nativeFormat = stereo;
        const auto run = [](SpeechTranscriber &started) -> Async<> {
            const QStringList noHints;
            co_await started.start(u"en-AU"_s, noHints);
        };
        const auto task = Task<>::run(run(transcriber));
        ASSERT_TRUE(waitUntil([&] { return transcriber.isRecording(); }));
    }

    FakePermissions permissions{clock};
};

TEST_F(AudioThreadTest, BufferCostsNoAllocationOneLockAndNoWaitForTheMainThread) {
    SpeechTranscriber transcriber(ports());
    start(transcriber);
    CountedSound sound(stereo);
    sound.reserve(bufferFrames);

    // The main thread runs nothing meanwhile: who waited for it would wait for ever.
    constexpr int bufferCount = 500;
    ThreadAccount spent;
    std::thread([&] {
        const AudioInput::Tap tap = fakes.audioInput.tap();
        tap(sound.next(bufferFrames));
        const ThreadAccount before = ThreadAccount::now();
        for (int i = 1; i < bufferCount; ++i)
            tap(sound.next(bufferFrames));
        const ThreadAccount after = ThreadAccount::now();
        spent = {after.allocations - before.allocations, after.locks - before.locks};
    }).join();
    EXPECT_EQ(spent.allocations, 0);
    if (ThreadAccount::countsLocks) {
        EXPECT_EQ(spent.locks, bufferCount - 1);
    }

    const double duration = double(bufferCount * bufferFrames) / stereo.sampleRate;
    EXPECT_TRUE(waitUntil([&] { return transcriber.recordedDuration() == duration; }));
    const auto heard = speech.requests.front()->from(0);
    EXPECT_EQ(heard.size(), size_t(bufferCount * bufferFrames));
}

// So that the test above can fail.
TEST_F(AudioThreadTest, AccountSeesAnAllocationAndALock) {
    std::mutex mutex;
    std::thread([&] {
        const ThreadAccount before = ThreadAccount::now();
        { const std::lock_guard lock(mutex); }
        std::vector<float> samples(100);
        EXPECT_EQ(samples.back(), 0);
        const ThreadAccount after = ThreadAccount::now();
        EXPECT_EQ(after.allocations - before.allocations, 1);
        EXPECT_EQ(after.locks - before.locks, ThreadAccount::countsLocks ? 1 : 0);
    }).join();
}

// Under load from both sides, as the thread sanitizer likes it.
TEST_F(AudioThreadTest, EveryBufferReachesTheFileAndOneOfTheRequestsThatAreSwappedMeanwhile) {
    AudioRecording recording(files, {16000, 1}, fakes.dataHome.path());
    std::vector<std::shared_ptr<LiveRequest>> requests;
    std::atomic<bool> isOver = false;
    constexpr qsizetype frames = 160;
    CountedSound sound({16000, 1});
    std::thread audio([&] {
        for (int i = 0; i < 3000; ++i)
            recording.append(sound.next(frames));
        isOver = true;
    });
    while (!isOver) {
        if (requests.size() < 400)
            requests.push_back(std::make_shared<LiveRequest>(AudioFormat{16000, 1}));
        recording.setLiveRequest(requests.back());
        std::this_thread::yield();
    }
    audio.join();
    recording.close();

    const auto whole = files.openForReading(recording.url);
    EXPECT_EQ(CountedSound::framesFrom(0, readAll(*whole), 1), sound.frames());
    qint64 next = -1;
    size_t heardInAll = 0;
    for (const auto &request : requests) {
        const std::span<const float> heard = request->from(0);
        if (heard.empty())
            continue;
        if (next < 0) // the first was swapped in after some buffers
            next = std::lround(heard.front() * float(1 << 20));
        const std::vector<float> copy(heard.begin(), heard.end());
        EXPECT_EQ(CountedSound::framesFrom(next, copy, 1), qint64(copy.size()));
        next += qint64(copy.size());
        heardInAll += copy.size();
    }
    EXPECT_GT(heardInAll, 0U);
    EXPECT_TRUE(next == sound.frames() || requests.back()->isFull());
}

TEST_F(AudioThreadTest, MainThreadHearsOfAFailureThatTheAudioThreadMeets) {
    FakeAudioFile small;
    small.frameLimit = 10 * bufferFrames;
    Ports all = ports();
    const Ports limited{all.clock,        all.audioInput, small,         all.speech,
                        all.permissions,  all.hotKey,     all.workspace, all.accessibility,
                        all.keyboard,     all.pasteboard, all.screens,   all.overlayPanel,
                        all.userDefaults, all.savePanel};
    SpeechTranscriber transcriber(limited);
    start(transcriber);
    std::thread audio([&, tap = fakes.audioInput.tap()] {
        CountedSound sound(stereo);
        for (int i = 0; i < 20; ++i)
            tap(sound.next(bufferFrames));
    });
    audio.join();
    EXPECT_TRUE(waitUntil([&] { return !transcriber.isRecording(); }));
    EXPECT_EQ(transcriber.errorMessage(), u"Audio capture failed: No space left on device"_s);
    EXPECT_EQ(transcriber.recordedDuration(), double(10 * bufferFrames) / stereo.sampleRate);
    EXPECT_FALSE(fakes.audioInput.isRunning());
}

} // namespace
} // namespace lorvane
