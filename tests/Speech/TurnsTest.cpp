#include "Speech/Turns.h"
#include "Speech/Abandoned.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <string>
#include <thread>

namespace lorvane {
namespace {

/// A thread that takes one turn in `lane`.
std::jthread taking(Turns &turns, const std::atomic<Urgency> &urgency, std::function<void()> work) {
    return std::jthread([&turns, &urgency, work = std::move(work)](const std::stop_token &stop) {
        const Turns::Lane lane(turns, urgency);
        try {
            const Turns::Turn turn(stop);
            work();
        } catch (const Abandoned &) {
        }
    });
}

/// Waits until `count` threads wait for a turn.
void waitForWaiters(Turns &turns, std::size_t count) {
    while (turns.waiterCount() < count)
        std::this_thread::yield();
}

TEST(Turns, GoToTheMostUrgentFirst) {
    Turns turns(1);
    std::promise<void> release;
    std::string order;
    const std::atomic<Urgency> ahead = Urgency::ahead;
    const std::atomic<Urgency> preview = Urgency::preview;
    const std::atomic<Urgency> awaited = Urgency::awaited;
    std::promise<void> taken;
    const auto first = taking(turns, ahead, [&] {
        taken.set_value();
        release.get_future().wait();
    });
    taken.get_future().wait();
    std::vector<std::jthread> others;
    others.push_back(taking(turns, ahead, [&] { order += 'a'; }));
    waitForWaiters(turns, 1);
    others.push_back(taking(turns, preview, [&] { order += 'p'; }));
    waitForWaiters(turns, 2);
    others.push_back(taking(turns, awaited, [&] { order += 'w'; }));
    waitForWaiters(turns, 3);
    release.set_value();
    for (std::jthread &other : others)
        other.join();
    EXPECT_EQ(order, "wpa");
}

TEST(Turns, AreTakenBySeveralAtOnce) {
    Turns turns(2);
    const std::atomic<Urgency> urgency = Urgency::preview;
    std::promise<void> one;
    std::promise<void> other;
    std::jthread first = taking(turns, urgency, [&] {
        one.set_value();
        other.get_future().wait();
    });
    std::jthread second = taking(turns, urgency, [&] {
        other.set_value();
        one.get_future().wait();
    });
    first.join();
    second.join();
}

TEST(Turns, AreNotWaitedForWhenTheWorkIsAbandoned) {
    Turns turns(1);
    std::promise<void> release;
    std::promise<void> taken;
    bool ran = false;
    const std::atomic<Urgency> urgency = Urgency::awaited;
    const auto first = taking(turns, urgency, [&] {
        taken.set_value();
        release.get_future().wait();
    });
    taken.get_future().wait();
    {
        auto second = taking(turns, urgency, [&] { ran = true; });
        waitForWaiters(turns, 1);
        second.request_stop();
    }
    EXPECT_FALSE(ran);
    release.set_value();
}

TEST(Turns, AreNoMatterForAThreadWithoutALane) {
    Turns turns(0);
    const Turns::Turn turn({});
}

} // namespace
} // namespace lorvane
