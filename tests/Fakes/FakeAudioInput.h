#pragma once

#include "Core/LocalizedError.h"
#include "Platform/AudioInput.h"

#include <optional>
#include <utility>
#include <vector>

namespace lorvane {

/// A microphone that hears what the test says. Nothing comes by itself; the test's calls reach the
/// tap on the thread that makes them.
class FakeAudioInput final : public AudioInput {
public:
    explicit FakeAudioInput(Clock &clock) : clock_(clock) {}

    bool isSlow = false;                ///< what may wait for a sound server waits until `goOn`
    AudioFormat nativeFormat{48000, 1}; ///< an unusable one when there is no microphone
    std::optional<QString> startError;  ///< thrown by `start`
    std::vector<float> tail;            ///< interleaved; heard, but delivered by `finish` only

    int startCount = 0;
    int stopCount = 0;
    std::optional<AudioFormat> startedFormat; ///< of the last `start`

    /// Whether it delivers, and is to go on with it.
    bool isRunning() const { return tap_ && !isFinishing_; }

    /// The tap of the running input, for a thread that is to be the audio thread.
    const Tap &tap() const { return tap_; }

    /// Delivers one buffer of interleaved samples, if the input is running.
    void deliver(const std::vector<float> &samples) {
        const Tap tap = tap_;
        if (tap)
            tap(bufferOf(samples));
    }

    /// Delivers one buffer whose samples all have one value.
    void deliver(qsizetype frameCount, float value) {
        deliver(std::vector<float>(size_t(frameCount * channelCount()), value));
    }

    /// Ends the running input as a lost device does. Call it on the main thread.
    void end(const QString &reason) {
        tap_ = nullptr;
        if (const Ended ended = std::exchange(ended_, nullptr))
            ended(reason);
    }

    /// Lets what waits go on.
    void goOn() {
        for (const auto &caller : std::exchange(waiting_, {}))
            caller.resume({});
    }

    Async<AudioFormat> format() override {
        co_await pause();
        co_return nativeFormat;
    }

    Async<> start(AudioFormat format, Tap tap, Ended ended) override {
        end();
        ++startCount;
        const int own = run_;
        co_await pause();
        if (own != run_)
            co_return;
        if (startError)
            throw LocalizedError(*startError);
        startedFormat = format;
        tap_ = std::move(tap);
        ended_ = std::move(ended);
    }

    Async<> finish() override {
        if (!tap_)
            co_return;
        isFinishing_ = true;
        ended_ = nullptr;
        const int own = run_;
        co_await pause();
        if (own != run_)
            co_return;
        if (!tail.empty())
            deliver(std::exchange(tail, {}));
        end();
    }

    void stop() override {
        ++stopCount;
        end();
    }

private:
    void end() {
        ++run_;
        tap_ = nullptr;
        ended_ = nullptr;
        isFinishing_ = false;
        goOn();
    }

    Async<> pause() {
        if (!isSlow)
            co_return;
        co_await suspend<std::monostate>(
            clock_,
            [this](const Continuation<std::monostate> &caller) { waiting_.push_back(caller); });
    }

    int channelCount() const { return startedFormat ? startedFormat->channelCount : 1; }
    AudioBuffer bufferOf(const std::vector<float> &samples) const {
        return {samples.data(), qsizetype(samples.size()) / channelCount(), channelCount()};
    }

    Clock &clock_;
    Tap tap_;
    Ended ended_;
    bool isFinishing_ = false;
    int run_ = 0; // which start it is
    std::vector<Continuation<std::monostate>> waiting_;
};

} // namespace lorvane
