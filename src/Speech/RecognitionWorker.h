#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>

namespace lorvane {

/// The one thread on which everything is recognised: what the user waits for first, live previews
/// in the time that is left. Any thread, from within a job too.
class RecognitionWorker {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// Has to end soon after its source is asked to stop. Must not throw.
    using Job = std::function<void(std::stop_source &stop)>;

    RecognitionWorker();
    /// Stops the running job and forgets the others.
    ~RecognitionWorker();

    /// Runs `job` as soon as what was posted before it is done; a background job makes way.
    void post(Job job);

    /// Runs `job` when there is nothing else to do and `time` has come.
    void postInBackground(TimePoint time, Job job);

private:
    void run(const std::stop_token &stop);

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<Job> jobs_;
    std::multimap<TimePoint, Job> backgroundJobs_;
    std::stop_source current_;
    bool currentIsBackground_ = false;
    std::jthread thread_;
};

} // namespace lorvane
