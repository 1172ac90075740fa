#pragma once

#include <QtGlobal>

namespace lorvane {

struct AudioFormat {
    double sampleRate = 0; ///< in hertz
    int channelCount = 0;

    /// A device that gives no sound has no rate or no channels.
    bool isUsable() const { return sampleRate > 0 && channelCount > 0; }
    bool operator==(const AudioFormat &) const = default;
};

/// A view of interleaved 32-bit float samples, -1 to 1; valid for the length of a call.
struct AudioBuffer {
    const float *samples = nullptr;
    qsizetype frameCount = 0;
    int channelCount = 1;
};

} // namespace lorvane
