#pragma once

#include <QDateTime>

#include <chrono>
#include <cstdint>
#include <functional>

namespace lorvane {

/// Time, the main queue and background work. Every wait of the program goes through it, so that
/// tests can run on a clock of their own.
class Clock {
public:
    using Work = std::function<void()>;
    using TimerId = std::uint64_t;

    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    /// The present time of day. Any thread.
    virtual QDateTime now() const = 0;

    /// Runs `work` on the main thread, after all that was posted before it. Any thread.
    virtual void post(Work work) = 0;

    /// Runs `work` once on the main thread when `delay` has passed. Main thread only.
    virtual TimerId callAfter(std::chrono::nanoseconds delay, Work work) = 0;

    /// Forgets a timer; one that has fired or is unknown does no harm. Main thread only.
    virtual void cancelTimer(TimerId timer) = 0;

    /// Runs `work` on some other thread. `work` must not throw. Any thread.
    virtual void runInBackground(Work work) = 0;
};

} // namespace lorvane
