#pragma once

#include <QDateTime>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace lorvane {

/// Wakes the main thread, from a thread that must neither allocate nor wait. Made and destroyed on
/// the main thread, perhaps by its own work; once it is gone, the work doesn't run any more.
class Wakeup {
public:
    Wakeup() = default;
    Wakeup(const Wakeup &) = delete;
    Wakeup &operator=(const Wakeup &) = delete;
    virtual ~Wakeup() = default;

    /// Has the work run on the main thread: once for one call, or for several before it. Any
    /// thread.
    virtual void wake() noexcept = 0;
};

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

    /// A way to run `work` on the main thread again and again. Main thread only. Throws
    /// LocalizedError.
    virtual std::unique_ptr<Wakeup> makeWakeup(Work work) = 0;

    /// Runs `work` once on the main thread when `delay` has passed. Main thread only.
    virtual TimerId callAfter(std::chrono::nanoseconds delay, Work work) = 0;

    /// Forgets a timer; one that has fired or is unknown does no harm. Main thread only.
    virtual void cancelTimer(TimerId timer) = 0;

    /// Runs `work` on some other thread. `work` must not throw. Any thread.
    virtual void runInBackground(Work work) = 0;
};

} // namespace lorvane
