#include "Speech/RecognitionWorker.h"

#include <pthread.h>

namespace lorvane {

RecognitionWorker::RecognitionWorker(Turns &turns, Urgency background, Now now)
    : turns_(turns),
      background_(background),
      now_(std::move(now)),
      urgency_(background),
      thread_([this](const std::stop_token &stop) { run(stop); }) {
    pthread_setname_np(thread_.native_handle(), "recogniser"); // for debuggers
}

RecognitionWorker::~RecognitionWorker() {
    thread_.request_stop();
    thread_.join();
}

void RecognitionWorker::post(Job job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    if (currentIsBackground_)
        current_.request_stop();
    changed_.notify_one();
}

void RecognitionWorker::postAfterBackground(Job job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    urgency_ = Urgency::awaited;
    changed_.notify_one();
}

void RecognitionWorker::postInBackground(TimePoint time, Job job) {
    const std::lock_guard lock(mutex_);
    backgroundJobs_.emplace(time, std::move(job));
    changed_.notify_one();
}

void RecognitionWorker::run(const std::stop_token &stop) {
    const std::stop_callback stopCurrent(stop, [this] {
        const std::lock_guard lock(mutex_);
        current_.request_stop();
    });
    const Turns::Lane lane(turns_, urgency_);
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        Job job;
        const auto earliest = backgroundJobs_.begin();
        if (!jobs_.empty()) {
            job = std::move(jobs_.front());
            jobs_.pop_front();
            currentIsBackground_ = false;
            urgency_ = Urgency::awaited;
        } else if (earliest == backgroundJobs_.end()) {
            changed_.wait(lock, stop,
                          [this] { return !jobs_.empty() || !backgroundJobs_.empty(); });
            continue;
        } else if (const TimePoint time = earliest->first; time > now_()) {
            changed_.wait_until(lock, stop, time, [this, time] {
                return !jobs_.empty() || backgroundJobs_.begin()->first < time;
            });
            continue;
        } else {
            job = std::move(earliest->second);
            backgroundJobs_.erase(earliest);
            currentIsBackground_ = true;
            urgency_ = background_;
        }
        current_ = std::stop_source();
        std::stop_source source = current_;
        lock.unlock();
        job(source);
        job = nullptr; // outside the lock: what it holds may post
        lock.lock();
        currentIsBackground_ = false;
    }
}

} // namespace lorvane
