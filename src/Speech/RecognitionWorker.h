#pragma once

#include "Speech/Turns.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>

namespace lorvane {

/// A thread on which models are run: what the user waits for first, other work in the time that is
/// left. Its priority is that of everything else: below it, another program that computes would
/// starve the live text, and the end of a dictation, which waits for what is being done. Any
/// thread, from within a job too.
class RecognitionWorker {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Now = std::function<TimePoint()>;
    /// Has to end soon after its source is asked to stop. Must not throw.
    using Job = std::function<void(std::stop_source &stop)>;

    /// `background` is how urgent the jobs in the background are. `turns` outlives this.
    RecognitionWorker(Turns &turns, Urgency background, Now now = std::chrono::steady_clock::now);
    /// Stops the running job and forgets the others.
    ~RecognitionWorker();

    TimePoint now() const { return now_(); }

    /// Runs `job` as soon as what was posted before it is done; a background job makes way.
    void post(Job job);

    /// Runs `job` as soon as what was posted before it is done, and what runs in the background,
    /// which becomes as urgent.
    void postAfterBackground(Job job);

    /// Runs `job` when there is nothing else to do and `time` has come.
    void postInBackground(TimePoint time, Job job);

private:
    void run(const std::stop_token &stop);

    Turns &turns_;
    const Urgency background_;
    const Now now_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<Job> jobs_;
    std::multimap<TimePoint, Job> backgroundJobs_;
    std::stop_source current_;
    std::atomic<Urgency> urgency_;
    bool currentIsBackground_ = false;
    std::jthread thread_;
};

} // namespace lorvane
