#include "Speech/Turns.h"

#include "Speech/Abandoned.h"

#include <algorithm>

namespace lorvane {

namespace {
thread_local Turns::Lane *currentLane = nullptr;
}

std::size_t Turns::waiterCount() const {
    const std::lock_guard lock(mutex_);
    return waiting_.size();
}

Turns::Lane::Lane(Turns &turns, const std::atomic<Urgency> &urgency)
    : turns_(turns), urgency_(urgency) {
    currentLane = this;
}

Turns::Lane::~Lane() { currentLane = nullptr; }

Turns::Turn::Turn(const std::stop_token &stop) : lane_(currentLane) {
    if (lane_)
        lane_->turns_.take(*lane_, stop);
}

Turns::Turn::~Turn() {
    if (lane_)
        lane_->turns_.giveBack();
}

void Turns::take(const Lane &lane, const std::stop_token &stop) {
    std::unique_lock lock(mutex_);
    waiting_.push_back(&lane);
    const bool isMine = changed_.wait(lock, stop, [&] {
        return free_ > 0 && std::none_of(waiting_.begin(), waiting_.end(), [&](const Lane *other) {
                   return other->urgency_ > lane.urgency_;
               });
    });
    waiting_.erase(std::find(waiting_.begin(), waiting_.end(), &lane));
    if (!isMine) {
        changed_.notify_all(); // it may have kept a less urgent one waiting
        throw Abandoned();
    }
    --free_;
}

void Turns::giveBack() {
    const std::lock_guard lock(mutex_);
    ++free_;
    changed_.notify_all();
}

} // namespace lorvane
