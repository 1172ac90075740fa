#include "Speech/RecognitionWorker.h"

#include <sys/resource.h>

namespace lorvane {

namespace {

/// By how much what runs in the background gives way to the rest of the program, and to others. An
/// unprivileged thread can't be raised again, so there is another one for what is awaited.
constexpr int backgroundNiceness = 10;

/// Of the calling thread: that is what the system takes 0 for.
void giveWay() { setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) + backgroundNiceness); }

} // namespace

RecognitionWorker::RecognitionWorker(Turns &turns, Urgency background, Now now)
    : turns_(turns),
      background_(background),
      now_(std::move(now)),
      urgency_(background),
      thread_([this](const std::stop_token &stop) { run(false, stop); }),
      backgroundThread_([this](const std::stop_token &stop) {
          giveWay();
          run(true, stop);
      }) {}

RecognitionWorker::~RecognitionWorker() {
    thread_.request_stop();
    backgroundThread_.request_stop();
    thread_.join();
    backgroundThread_.join();
}

void RecognitionWorker::post(Job job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    if (currentIsBackground_)
        current_.request_stop();
    changed_.notify_all();
}

void RecognitionWorker::postAfterBackground(Job job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    urgency_ = Urgency::awaited;
    changed_.notify_all();
}

void RecognitionWorker::postInBackground(TimePoint time, Job job) {
    const std::lock_guard lock(mutex_);
    backgroundJobs_.emplace(time, std::move(job));
    changed_.notify_all();
}

RecognitionWorker::Job RecognitionWorker::take(bool isBackground) {
    if (isBusy_ || isBackground != jobs_.empty())
        return {};
    Job job;
    if (!isBackground) {
        job = std::move(jobs_.front());
        jobs_.pop_front();
    } else if (const auto next = backgroundJobs_.begin();
               next != backgroundJobs_.end() && next->first <= now_()) {
        job = std::move(next->second);
        backgroundJobs_.erase(next);
    }
    return job;
}

void RecognitionWorker::wait(std::unique_lock<std::mutex> &lock, bool isBackground,
                             const std::stop_token &stop) {
    if (isBusy_ || !isBackground || !jobs_.empty() || backgroundJobs_.empty()) {
        changed_.wait(lock, stop, [this, isBackground] {
            return !isBusy_ &&
                   (isBackground ? jobs_.empty() && !backgroundJobs_.empty() : !jobs_.empty());
        });
        return;
    }
    const TimePoint time = backgroundJobs_.begin()->first;
    changed_.wait_until(lock, stop, time, [this, time] {
        return isBusy_ || !jobs_.empty() || backgroundJobs_.begin()->first < time || time <= now_();
    });
}

void RecognitionWorker::run(bool isBackground, const std::stop_token &stop) {
    const std::stop_callback stopCurrent(stop, [this] {
        const std::lock_guard lock(mutex_);
        current_.request_stop();
    });
    const Turns::Lane lane(turns_, urgency_);
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        Job job = take(isBackground);
        if (!job) {
            wait(lock, isBackground, stop);
            continue;
        }
        isBusy_ = true;
        currentIsBackground_ = isBackground;
        urgency_ = isBackground ? background_ : Urgency::awaited;
        current_ = std::stop_source();
        std::stop_source source = current_;
        lock.unlock();
        job(source);
        job = nullptr; // outside the lock: what it holds may post
        lock.lock();
        isBusy_ = false;
        currentIsBackground_ = false;
        changed_.notify_all();
    }
}

} // namespace lorvane
