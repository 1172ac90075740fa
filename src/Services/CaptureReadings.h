#pragma once

#include <atomic>

namespace lorvane {

/// How the recording stands after its last buffer: written by the audio thread, read by the main
/// thread, which never holds it up. A main thread that is late misses what was in between.
struct CaptureReadings {
    std::atomic<double> duration = 0; ///< recorded so far, in seconds
    std::atomic<double> level = 0;    ///< of the last buffer, 0 to 1
    std::atomic<bool> hasFailed = false;

    static_assert(std::atomic<double>::is_always_lock_free);
};

} // namespace lorvane
