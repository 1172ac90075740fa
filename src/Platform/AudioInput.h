#pragma once

#include "Platform/Audio.h"

#include <QString>

#include <functional>

namespace lorvane {

/// The microphone: the system's default source. Main thread only, but for the tap.
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
    virtual AudioFormat format() = 0;

    /// Begins to deliver buffers in `format`. Throws LocalizedError. Takes at most half a second.
    virtual void start(const AudioFormat &format, Tap tap, Ended ended) = 0;

    /// When it returns, the tap is not running and will not run again. Harmless when not started.
    virtual void stop() = 0;
};

} // namespace lorvane
