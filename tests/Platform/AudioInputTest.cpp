#include "Core/LocalizedError.h"
#include "Fakes/FakeAudioInput.h"
#include "Platform/Linux/PulseAudioInput.h"
#include "Platform/Linux/SystemClock.h"
#include "PrivateServers.h"

#include <QCoreApplication>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <new>
#include <random>
#include <thread>
#include <vector>

namespace {

thread_local long allocationCount = 0;

} // namespace

// Counts what each thread of this program allocates, to see which doesn't.
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

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;
using testing::Each;
using testing::Le;

constexpr AudioFormat mono{48000, 1};

double millisecondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double, std::milli>(SteadyClock::now() - start).count();
}

template <class Function>
double millisecondsOf(Function function) {
    const auto start = SteadyClock::now();
    function();
    return millisecondsSince(start);
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

/// A tap that keeps everything.
class Ear {
public:
    struct Arrival {
        SteadyClock::time_point time;
        qint64 frames; // heard in all
    };

    AudioInput::Tap tap() {
        return [this](const AudioBuffer &buffer) {
            const auto time = SteadyClock::now();
            const long allocations = allocationCount;
            const std::lock_guard lock(mutex_);
            if (heard_.capacity() == 0)
                heard_.reserve(10'000'000);
            heard_.insert(heard_.end(), buffer.samples,
                          buffer.samples + buffer.frameCount * buffer.channelCount);
            frames_ += buffer.frameCount;
            sizes_.push_back(buffer.frameCount);
            arrivals_.push_back({time, frames_});
            threads_.push_back(std::this_thread::get_id());
            allocations_.push_back(allocations - own_);
            own_ += allocationCount - allocations;
        };
    }

    qint64 frames() const { return copyOf(frames_); }
    std::vector<float> heard() const { return copyOf(heard_); }
    std::vector<qsizetype> sizes() const { return copyOf(sizes_); }
    std::vector<Arrival> arrivals() const { return copyOf(arrivals_); }
    std::vector<std::thread::id> threads() const { return copyOf(threads_); }
    /// What the thread of each call had allocated until then, this tap's own left out.
    std::vector<long> allocations() const { return copyOf(allocations_); }

private:
    template <class Value>
    Value copyOf(const Value &value) const {
        const std::lock_guard lock(mutex_);
        return value;
    }

    mutable std::mutex mutex_;
    std::vector<float> heard_;
    std::vector<qsizetype> sizes_;
    std::vector<Arrival> arrivals_;
    std::vector<std::thread::id> threads_;
    std::vector<long> allocations_;
    qint64 frames_ = 0;
    long own_ = 0;
};

AudioInput::Ended nobody() {
    return [](const QString &) {};
}

/// The application and its clock, on whose event loop the test waits.
struct Application {
    int count = 0;
    QCoreApplication application{count, nullptr};
    SystemClock clock;

    bool waitUntil(const std::function<bool()> &condition) {
        QTimer tick; // what happens on other threads brings no event
        tick.start(2);
        const auto start = SteadyClock::now();
        while (!condition() && millisecondsSince(start) < 10'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return condition();
    }
    void waitFor(std::chrono::milliseconds duration) {
        const auto start = SteadyClock::now();
        waitUntil([&] { return SteadyClock::now() - start >= duration; });
    }
};

/// Points the clients that are made from now on to a sound server.
struct SoundAddress {
    explicit SoundAddress(const QString &address) { qputenv("PULSE_SERVER", address.toUtf8()); }
};

/// Plays white noise to the virtual microphone, so that each stretch of it can be told apart.
class Noise {
public:
    explicit Noise(const PrivateSound &sound, int channels = 1)
        : player_(QStringLiteral("sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("exec pacat -s %1 -d virtmic --raw --format=s16le --rate=48000 "
                                  "--channels=%2 --latency-msec=50 /dev/urandom")
                       .arg(sound.address())
                       .arg(channels)}) {}

private:
    PrivateProcess player_;
};

struct Fake : Application {
    FakeAudioInput input;

    void hear() { input.deliver(2048, 0.25F); }
    void loseMicrophone() { input.end(QStringLiteral("gone")); }
    void haveNoMicrophone() {
        input.nativeFormat = {};
        input.startError = QStringLiteral("There is no microphone.");
    }
};

struct Pulse : Application {
    PrivateSound sound;
    SoundAddress address{sound.address()};
    PulseAudioInput input{clock};

    void hear() {}
    void loseMicrophone() { sound.control(QStringLiteral("unload-module module-remap-source")); }
    void haveNoMicrophone() {
        loseMicrophone();
        waitUntil([this] { return !input.format().isUsable(); });
    }
};

/// What holds for every microphone.
template <class Driver>
class AudioInputTest : public testing::Test {
protected:
    bool hear(const Ear &ear, qint64 frames) {
        return driver.waitUntil([&] {
            if (ear.frames() < frames)
                driver.hear();
            return ear.frames() >= frames;
        });
    }

    Driver driver;
    AudioInput &input = driver.input;
};

using Drivers = testing::Types<Fake, Pulse>;
TYPED_TEST_SUITE(AudioInputTest, Drivers);

TYPED_TEST(AudioInputTest, TheFormatIsTheMicrophones) { EXPECT_EQ(this->input.format(), mono); }

TYPED_TEST(AudioInputTest, BuffersComeUntilItIsStoppedAndNoneAfter) {
    Ear ear;
    this->input.start(mono, ear.tap(), nobody());
    EXPECT_TRUE(this->hear(ear, 3 * 2048));
    this->input.stop();
    const qint64 frames = ear.frames();
    this->driver.hear();
    this->driver.waitFor(60ms);
    EXPECT_EQ(ear.frames(), frames);
}

TYPED_TEST(AudioInputTest, AStopMoreOrLessDoesNoHarm) {
    this->input.stop();
    Ear ear;
    this->input.start(mono, ear.tap(), nobody());
    this->input.stop();
    this->input.stop();
}

TYPED_TEST(AudioInputTest, ItStartsAgainAfterAStop) {
    for (int i = 0; i < 5; ++i) {
        Ear ear;
        this->input.start(mono, ear.tap(), nobody());
        EXPECT_TRUE(this->hear(ear, 2048));
        this->input.stop();
    }
}

TYPED_TEST(AudioInputTest, AStartReplacesTheOneBefore) {
    Ear first;
    Ear second;
    this->input.start(mono, first.tap(), nobody());
    this->input.start(mono, second.tap(), nobody());
    const qint64 frames = first.frames();
    EXPECT_TRUE(this->hear(second, 2048));
    EXPECT_EQ(first.frames(), frames);
    this->input.stop();
}

TYPED_TEST(AudioInputTest, ALostMicrophoneIsToldOnceOnTheMainThread) {
    Ear ear;
    int count = 0;
    QString reason;
    const auto mainThread = std::this_thread::get_id();
    this->input.start(mono, ear.tap(), [&](const QString &text) {
        ++count;
        reason = text;
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
    });
    EXPECT_TRUE(this->hear(ear, 2048));
    this->driver.loseMicrophone();
    EXPECT_TRUE(this->driver.waitUntil([&] { return count > 0; }));
    const qint64 frames = ear.frames();
    this->driver.waitFor(60ms);
    this->input.stop();
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_EQ(ear.frames(), frames);
}

TYPED_TEST(AudioInputTest, AnEndThatComesAfterTheStopIsNotTold) {
    Ear ear;
    bool isTold = false;
    this->input.start(mono, ear.tap(), [&](const QString &) { isTold = true; });
    EXPECT_TRUE(this->hear(ear, 2048));
    this->input.stop();
    this->driver.loseMicrophone();
    this->driver.waitFor(60ms);
    EXPECT_FALSE(isTold);
}

TYPED_TEST(AudioInputTest, WithoutAMicrophoneThereIsNoFormatAndAStartSaysWhy) {
    this->driver.haveNoMicrophone();
    EXPECT_FALSE(this->input.format().isUsable());
    Ear ear;
    EXPECT_EQ(errorOf([&] { this->input.start(mono, ear.tap(), nobody()); }),
              QStringLiteral("There is no microphone."));
}

class PulseAudioInputTest : public testing::Test, protected Pulse {};

TEST_F(PulseAudioInputTest, BuffersHave2048FramesButForTheLastOne) {
    Ear ear;
    input.start(mono, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 10 * 2048; }));
    input.stop();
    auto sizes = ear.sizes();
    EXPECT_LE(sizes.back(), 2048);
    sizes.pop_back();
    EXPECT_THAT(sizes, Each(2048));
}

TEST_F(PulseAudioInputTest, TheAudioThreadDoesNotAllocate) {
    Ear ear;
    input.start(mono, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 20 * 2048; }));
    input.stop();
    auto allocations = ear.allocations();
    allocations.pop_back(); // the last one comes from the main thread
    EXPECT_THAT(allocations, Each(allocations.front()));
    EXPECT_NE(ear.threads().front(), std::this_thread::get_id());
}

TEST_F(PulseAudioInputTest, StartIsQuickAndSoIsTheFirstBuffer) {
    input.format();
    std::vector<double> formats;
    std::vector<double> starts;
    std::vector<double> firsts;
    for (int i = 0; i < 20; ++i) {
        Ear ear;
        const auto begin = SteadyClock::now();
        formats.push_back(millisecondsOf([&] { input.format(); }));
        input.start(mono, ear.tap(), nobody());
        starts.push_back(millisecondsSince(begin));
        ASSERT_TRUE(waitUntil([&] { return ear.frames() > 0; }));
        firsts.push_back(
            std::chrono::duration<double, std::milli>(ear.arrivals()[0].time - begin).count());
        input.stop();
    }
    std::sort(formats.begin(), formats.end());
    std::sort(starts.begin(), starts.end());
    std::sort(firsts.begin(), firsts.end());
    printf(
        "start: median %.1f ms, longest %.1f ms; first buffer: median %.1f ms, longest %.1f ms\n",
        starts[10], starts.back(), firsts[10], firsts.back());
    EXPECT_LT(formats[10], 1);
    EXPECT_LT(starts.back(), 500);
}

TEST_F(PulseAudioInputTest, NothingHeardBeforeAStopIsLost) {
    const Noise noise(sound);
    PulseAudioInput other(clock); // hears the same and goes on
    Ear reference;
    other.start(mono, reference.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return reference.frames() >= 48000; }));

    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    struct Stop {
        SteadyClock::time_point time;
        std::vector<float> last;
    };
    std::vector<Stop> stops;
    std::vector<double> durations;
    for (int i = 0; i < 40; ++i) {
        Ear ear;
        input.start(mono, ear.tap(), nobody());
        const auto length =
            std::chrono::milliseconds(std::uniform_int_distribution<int>(120, 220)(random));
        waitFor(length);
        const auto time = SteadyClock::now();
        durations.push_back(millisecondsOf([&] { input.stop(); }));
        const auto heard = ear.heard();
        ASSERT_GT(heard.size(), 256U);
        stops.push_back({time, {heard.end() - 256, heard.end()}});
    }
    waitFor(200ms);
    other.stop();

    // The earliest that a frame was ever there tells when it was heard.
    const auto arrivals = reference.arrivals();
    const auto origin = arrivals.front().time;
    const auto frameAt = [&](SteadyClock::time_point time) {
        return std::chrono::duration<double>(time - origin).count() * mono.sampleRate;
    };
    double lead = -1e9;
    for (const Ear::Arrival &arrival : arrivals)
        lead = std::max(lead, double(arrival.frames) - frameAt(arrival.time));

    const auto all = reference.heard();
    std::vector<double> losses;
    for (const Stop &stop : stops) {
        const auto place = std::search(all.begin(), all.end(), stop.last.begin(), stop.last.end());
        ASSERT_NE(place, all.end());
        const auto end = double(place - all.begin()) + double(stop.last.size());
        losses.push_back((frameAt(stop.time) + lead - end) / mono.sampleRate * 1000);
    }
    std::sort(losses.begin(), losses.end());
    std::sort(durations.begin(), durations.end());
    printf(
        "lost at stop: median %.1f ms, most %.1f ms; stop took: median %.1f ms, longest %.1f ms\n",
        losses[20], losses.back(), durations[20], durations.back());
    // A busy machine may hold up the server, or this test, for a moment.
    EXPECT_LT(losses[20], 1);
    EXPECT_LT(losses.back(), 40);
    EXPECT_LT(durations.back(), 400);
}

TEST_F(PulseAudioInputTest, NoFrameIsLostOrDoubledBetweenBuffers) {
    const Noise noise(sound);
    PulseAudioInput other(clock);
    Ear first;
    Ear second;
    input.start(mono, first.tap(), nobody());
    other.start(mono, second.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return second.frames() >= 3 * 48000; }));
    input.stop();
    other.stop();
    const auto a = first.heard();
    const auto b = second.heard();
    // `a` began earlier and ended earlier.
    const auto place = std::search(a.begin(), a.end(), b.begin() + 4800, b.begin() + 4800 + 256);
    ASSERT_NE(place, a.end());
    EXPECT_GT(a.end() - place, 2 * 48000);
    EXPECT_TRUE(std::equal(place, a.end(), b.begin() + 4800));
}

TEST_F(PulseAudioInputTest, TheFormatFollowsTheDefaultSource) {
    EXPECT_EQ(input.format(), mono);
    sound.control(
        QStringLiteral("load-module module-null-sink sink_name=other rate=44100 channels=2 "
                       "norewinds=1"));
    sound.control(QStringLiteral("load-module module-remap-source source_name=stereo "
                                 "master=other.monitor"));
    sound.control(QStringLiteral("set-default-source stereo"));
    EXPECT_TRUE(waitUntil([&] { return input.format() == AudioFormat{44100, 2}; }));

    Ear ear;
    input.start({44100, 2}, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(qint64(ear.heard().size()), 2 * ear.frames());
}

TEST_F(PulseAudioInputTest, TheSoundOfALoudspeakerIsNoMicrophone) {
    sound.control(QStringLiteral("set-default-source virtmic.monitor"));
    EXPECT_TRUE(waitUntil([&] { return !input.format().isUsable(); }));
}

TEST_F(PulseAudioInputTest, ALostMicrophoneDeliversWhatItHeardAndSaysSo) {
    Ear ear;
    QString reason;
    input.start(mono, ear.tap(), [&](const QString &text) { reason = text; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    loseMicrophone();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The microphone was disconnected."));
    EXPECT_THAT(ear.sizes(), Each(Le(2048)));
    EXPECT_TRUE(waitUntil([&] { return !input.format().isUsable(); }));
}

TEST_F(PulseAudioInputTest, AServerThatEndsIsToldAndAnotherIsReachedByTheNextStart) {
    Ear ear;
    QString reason;
    input.start(mono, ear.tap(), [&](const QString &text) { reason = text; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.kill();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The sound server has ended."));
    EXPECT_FALSE(input.format().isUsable());
    EXPECT_THAT(errorOf([&] { input.start(mono, ear.tap(), nobody()); }).toStdString(),
                testing::StartsWith("The sound server can’t be reached: "));

    sound.start();
    EXPECT_EQ(input.format(), mono);
    Ear next;
    input.start(mono, next.tap(), nobody());
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
}

TEST_F(PulseAudioInputTest, AServerThatHangsHoldsNobodyUpAndCatchesUp) {
    Ear ear;
    input.start(mono, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.hang();
    EXPECT_LT(millisecondsOf([&] { input.stop(); }), 400);
    EXPECT_LT(millisecondsOf([&] { input.format(); }), 100);
    QString error;
    EXPECT_LT(
        millisecondsOf([&] { error = errorOf([&] { input.start(mono, ear.tap(), nobody()); }); }),
        600);
    EXPECT_EQ(error, QStringLiteral("The sound server doesn’t answer."));
    PulseAudioInput other(clock);
    AudioFormat format;
    EXPECT_LT(millisecondsOf([&] { format = other.format(); }), 800);
    EXPECT_FALSE(format.isUsable());

    sound.goOn();
    Ear next;
    input.start(mono, next.tap(), nobody());
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(other.format(), mono);
}

TEST_F(PulseAudioInputTest, ItCanBeDestroyedWhileItRecordsAndWhileItConnects) {
    for (int i = 0; i < 10; ++i) {
        Ear ear;
        {
            PulseAudioInput other(clock);
            other.start(mono, ear.tap(), nobody());
            waitUntil([&] { return ear.frames() > 0; });
        }
        const qint64 frames = ear.frames();
        { const PulseAudioInput connecting(clock); }
        waitFor(5ms);
        EXPECT_EQ(ear.frames(), frames);
    }
}

TEST(PulseAudioInputWithoutServerTest, NobodyIsHeldUpAndTheErrorSaysWhy) {
    const QTemporaryDir folder;
    Application application;
    const SoundAddress address(QStringLiteral("unix:") + folder.filePath(QStringLiteral("native")));
    AudioFormat format;
    QString error;
    std::optional<PulseAudioInput> input;
    EXPECT_LT(millisecondsOf([&] { input.emplace(application.clock); }), 50);
    EXPECT_LT(millisecondsOf([&] { format = input->format(); }), 50);
    EXPECT_LT(millisecondsOf([&] {
                  error = errorOf([&] {
                      input->start(
                          mono, [](const AudioBuffer &) {}, nobody());
                  });
              }),
              50);
    EXPECT_FALSE(format.isUsable());
    EXPECT_EQ(error, QStringLiteral("The sound server can’t be reached: Connection refused."));
}

} // namespace
} // namespace lorvane
