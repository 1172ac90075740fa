#pragma once

#include "Core/LocalizedError.h"
#include "Fakes/FakeAudioInput.h"
#include "Platform/Linux/PulseAudioInput.h"
#include "Platform/Linux/SystemClock.h"
#include "PrivateServers.h"

#include <QCoreApplication>
#include <QTimer>

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace lorvane {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

/// How often the calling thread has called operator new so far.
long allocationsOfThisThread();

inline constexpr AudioFormat mono{48000, 1};

inline double millisecondsSince(SteadyClock::time_point start) {
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
            const long allocations = allocationsOfThisThread();
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
            own_ += allocationsOfThisThread() - allocations;
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

inline AudioInput::Ended nobody() {
    return [](const QString &) {};
}

/// The longest that the calls of an input may hold up the main thread, on a machine that is busy
/// with other things.
inline constexpr double longestStall = 50;

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
    /// What an asynchronous function gives, or throws.
    template <class T>
    T await(Async<T> function) {
        const auto task = Task<T>::run(std::move(function));
        EXPECT_TRUE(waitUntil([&] { return task.isDone(); }));
        return task.operator co_await().await_resume();
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
    FakeAudioInput input{clock};

    void hear() { input.deliver(2048, 0.25F); }
    void beSlow() { input.isSlow = true; }
    void goOn() { input.goOn(); }
    void loseMicrophone() { input.end(QStringLiteral("gone")); }
    void haveNoMicrophone() {
        input.nativeFormat = {};
        input.startError = QStringLiteral("No microphone input is available. "
                                          "Check your audio input in System Settings.");
    }
};

struct Pulse : Application {
    PrivateSound sound;
    SoundAddress address{sound.address()};
    PulseAudioInput input{clock};

    void hear() {}
    void beSlow() { sound.hang(); }
    void goOn() { sound.goOn(); }
    void loseMicrophone() {
        goOn();
        sound.control(QStringLiteral("unload-module module-remap-source"));
    }
    void haveNoMicrophone() {
        loseMicrophone();
        waitUntil([this] { return !await(input.format()).isUsable(); });
    }
};

class PulseAudioInputTest : public testing::Test, protected Pulse {};

} // namespace lorvane
