#pragma once

#include "Platform/Clock.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace lorvane {

/// A clock that stands still until the test moves it. The thread of the test is the main thread:
/// nothing runs but inside `runUntilIdle` and `advance`. `now`, `post` and `runInBackground` can be
/// called from any thread.
class FakeClock : public Clock {
public:
    /// Keeps background work waiting until it is false again, to see what happens meanwhile.
    bool holdsBackground = false;

    explicit FakeClock(QDateTime start = QDateTime({2026, 3, 14}, {9, 26, 53}, Qt::UTC))
        : start_(std::move(start)) {}

    QDateTime now() const override {
        const std::lock_guard lock(mutex_);
        return start_.addMSecs(
            std::chrono::duration_cast<std::chrono::milliseconds>(elapsed_).count());
    }

    void post(Work work) override {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(work));
    }

    std::unique_ptr<Wakeup> makeWakeup(Work work) override {
        return std::make_unique<PostedWakeup>(*this, std::move(work));
    }

    TimerId callAfter(std::chrono::nanoseconds delay, Work work) override {
        const TimerId timer = ++lastTimer_;
        const auto due = elapsed() + std::max(delay, std::chrono::nanoseconds(0));
        timers_.emplace(std::pair(due, timer), std::move(work));
        return timer;
    }

    void cancelTimer(TimerId timer) override {
        std::erase_if(timers_, [timer](const auto &entry) { return entry.first.second == timer; });
    }

    void runInBackground(Work work) override {
        const std::lock_guard lock(mutex_);
        background_.push_back(std::move(work));
    }

    /// Runs everything that waits, background work first, and what comes of it. Moves no time.
    void runUntilIdle() {
        while (const Work work = next())
            work();
    }

    /// Runs what waits as one turn of the main queue: the oldest posted work, and no more.
    /// False if there was none.
    bool runOnePosted() {
        const Work work = take(posted_);
        if (work)
            work();
        return work != nullptr;
    }

    bool hasPosted() const {
        const std::lock_guard lock(mutex_);
        return !posted_.empty();
    }

    /// Lets time pass. The timers that fall due fire in the order of their times, those of the same
    /// time in the order in which they were set; after each one all that waits is run.
    void advance(std::chrono::nanoseconds duration) {
        const auto end = elapsed() + duration;
        runUntilIdle();
        while (!timers_.empty() && timers_.begin()->first.first <= end) {
            const auto timer = timers_.extract(timers_.begin());
            setElapsed(std::max(elapsed(), timer.key().first));
            timer.mapped()();
            runUntilIdle();
        }
        setElapsed(end);
    }

    /// How many timers are set, to see that nothing is left ticking.
    qsizetype timerCount() const { return qsizetype(timers_.size()); }

    /// The time that has passed since the clock was made.
    std::chrono::nanoseconds elapsed() const {
        const std::lock_guard lock(mutex_);
        return elapsed_;
    }

private:
    class PostedWakeup final : public Wakeup {
    public:
        PostedWakeup(FakeClock &clock, Work work)
            : clock_(clock), shared_(std::make_shared<Shared>(std::move(work))) {}

        void wake() noexcept override {
            if (shared_->isPending.exchange(true))
                return;
            clock_.post([weak = std::weak_ptr(shared_)] {
                if (const auto shared = weak.lock()) {
                    shared->isPending = false;
                    shared->work();
                }
            });
        }

    private:
        struct Shared {
            explicit Shared(Work sharedWork) : work(std::move(sharedWork)) {}
            Work work;
            std::atomic<bool> isPending = false;
        };
        FakeClock &clock_;
        std::shared_ptr<Shared> shared_;
    };

    Work take(std::deque<Work> &queue) {
        const std::lock_guard lock(mutex_);
        if (queue.empty())
            return {};
        Work work = std::move(queue.front());
        queue.pop_front();
        return work;
    }

    Work next() {
        Work work = holdsBackground ? Work() : take(background_);
        return work ? work : take(posted_);
    }

    void setElapsed(std::chrono::nanoseconds elapsed) {
        const std::lock_guard lock(mutex_);
        elapsed_ = elapsed;
    }

    const QDateTime start_;
    mutable std::mutex mutex_;
    std::chrono::nanoseconds elapsed_{0};
    std::deque<Work> posted_;
    std::deque<Work> background_;
    std::map<std::pair<std::chrono::nanoseconds, TimerId>, Work> timers_;
    TimerId lastTimer_ = 0;
};

} // namespace lorvane
