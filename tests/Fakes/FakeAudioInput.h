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
    AudioFormat nativeFormat{48000, 1}; ///< an unusable one when there is no microphone
    std::optional<QString> startError;  ///< thrown by `start`
    std::vector<float> tail;            ///< interleaved; heard, but delivered by `stop` only

    int startCount = 0;
    int stopCount = 0;
    std::optional<AudioFormat> startedFormat; ///< of the last `start`

    bool isRunning() const { return static_cast<bool>(tap_); }

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

    AudioFormat format() override { return nativeFormat; }

    void start(const AudioFormat &format, Tap tap, Ended ended) override {
        ++startCount;
        if (startError)
            throw LocalizedError(*startError);
        startedFormat = format;
        tap_ = std::move(tap);
        ended_ = std::move(ended);
    }

    void stop() override {
        ++stopCount;
        if (tap_ && !tail.empty())
            deliver(std::exchange(tail, {}));
        tap_ = nullptr;
        ended_ = nullptr;
    }

private:
    int channelCount() const { return startedFormat ? startedFormat->channelCount : 1; }
    AudioBuffer bufferOf(const std::vector<float> &samples) const {
        return {samples.data(), qsizetype(samples.size()) / channelCount(), channelCount()};
    }

    Tap tap_;
    Ended ended_;
};

} // namespace lorvane
