#pragma once

#include "Platform/Audio.h"
#include "Platform/Task.h"

#include <QString>

#include <functional>

namespace lorvane {

/// The microphone: the system's default source. Main thread only, but for the tap. Nothing here
/// holds the main thread up; what has to wait for the sound server suspends its caller.
class AudioInput {
public:
    /// Called on an audio thread with about 2048 frames at a time. It must not block.
    using Tap = std::function<void(const AudioBuffer &)>;
    /// Called on the main thread, at most once a start, when the source ends without `stop`.
    using Ended = std::function<void(const QString &reason)>;

    AudioInput() = default;
    AudioInput(const AudioInput &) = delete;
    AudioInput &operator=(const AudioInput &) = delete;
    virtual ~AudioInput() = default;

    /// The native format of the default source; not usable when there is none. Takes at most half a
    /// second, and no time at all once the sound server has been reached.
    virtual Async<AudioFormat> format() = 0;

    /// Begins to deliver buffers in `format`; the first may come before it returns. Throws
    /// LocalizedError. Takes at most half a second, and ends early when `stop` comes first.
    virtual Async<> start(AudioFormat format, Tap tap, Ended ended) = 0;

    /// Delivers what has been heard until this call, all of it, and stops then; an end that comes
    /// by itself meanwhile is not told. Takes at most a fifth of a second, and ends early when
    /// `stop` comes first.
    virtual Async<> finish() = 0;

    /// Stops at once, with what has been delivered. When it returns, the tap is not running and
    /// will not run again. Harmless when not started.
    virtual void stop() = 0;
};

} // namespace lorvane
