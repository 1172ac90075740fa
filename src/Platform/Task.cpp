#include "Platform/Task.h"

namespace lorvane {

Async<> sleep(Clock &clock, std::chrono::nanoseconds delay) {
    const std::stop_token cancellation = co_await currentCancellation;
    if (cancellation.stop_requested())
        co_return;

    Clock::TimerId timer = 0;
    std::optional<std::stop_callback<std::function<void()>>> onCancel;
    co_await suspend<bool>(clock, [&](const Continuation<bool> &wake) {
        timer = clock.callAfter(delay, [wake] { wake.resume(true); });
        onCancel.emplace(cancellation, [wake] { wake.resume(false); });
    });
    onCancel.reset();
    clock.cancelTimer(timer);
}

} // namespace lorvane
