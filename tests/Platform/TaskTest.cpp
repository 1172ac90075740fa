#include "Platform/Task.h"

#include "Core/LocalizedError.h"
#include "Fakes/FakeClock.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

namespace lorvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// Counts the live copies of itself, to see that every copy is destroyed exactly once.
struct Counted {
    static inline std::atomic<int> live = 0;
    int value = 0;

    explicit Counted(int number = 0) : value(number) { ++live; }
    Counted(const Counted &other) : value(other.value) { ++live; }
    Counted(Counted &&other) noexcept : value(std::exchange(other.value, -1)) { ++live; }
    Counted &operator=(const Counted &) = default;
    Counted &operator=(Counted &&) = default;
    ~Counted() { --live; }
};

class TaskTest : public testing::Test {
protected:
    TaskTest() { Counted::live = 0; }

    FakeClock clock;
    std::vector<std::string> log;
};

Async<int> giveAtOnce(int value) { co_return value; }

Async<int> giveAfter(Clock &clock, std::chrono::nanoseconds delay, int value) {
    co_await sleep(clock, delay);
    co_return value;
}

Async<> note(std::vector<std::string> &log, std::string entry) {
    log.push_back(std::move(entry));
    co_return;
}

Async<> noteAfter(Clock &clock, std::chrono::nanoseconds delay, std::vector<std::string> &log,
                  std::string entry) {
    co_await sleep(clock, delay);
    log.push_back(std::move(entry));
}

Async<int> fail(std::string why) {
    throw std::runtime_error(why);
    co_return 0;
}

Async<int> failAfter(Clock &clock, std::chrono::nanoseconds delay, std::string why) {
    co_await sleep(clock, delay);
    throw std::runtime_error(why);
}

Async<int> await(Task<int> task) { co_return co_await task; }

Async<> awaitAndNote(Task<int> task, std::vector<std::string> &log, std::string name) {
    const int value = co_await task;
    log.push_back(name + std::to_string(value));
}

Async<std::string> errorOf(Task<int> task) {
    try {
        co_await task;
    } catch (const std::runtime_error &error) {
        co_return error.what();
    }
    co_return "no error";
}

Async<bool> isCancelled() {
    const std::stop_token cancellation = co_await currentCancellation;
    co_return cancellation.stop_requested();
}

Async<bool> nestedIsCancelled() { co_return co_await isCancelled(); }

Async<int> suspendFor(Clock &clock, std::optional<Continuation<int>> &continuation) {
    const int value = co_await suspend<int>(
        clock, [&continuation](const Continuation<int> &given) { continuation = given; });
    co_return value;
}

/// The result of a task that is over.
template <class T>
T resultOf(const Task<T> &task) {
    EXPECT_TRUE(task.isDone());
    std::optional<T> result;
    const auto read = [](Task<T> finished, std::optional<T> &out) -> Async<> {
        out = co_await finished;
    };
    Task<>::run(read(task, result));
    return result.value();
}

TEST_F(TaskTest, RunsUpToItsFirstSuspensionBeforeRunReturns) {
    const auto task = Task<>::run(note(log, "ran"));
    EXPECT_THAT(log, ElementsAre("ran"));
    EXPECT_TRUE(task.isDone());

    const auto waiting = Task<int>::run(giveAfter(clock, 1s, 7));
    EXPECT_FALSE(waiting.isDone());
    clock.advance(1s);
    EXPECT_EQ(resultOf(waiting), 7);
}

TEST_F(TaskTest, AFunctionDoesNotBeginBeforeItIsAwaited) {
    { const Async<> dropped = note(log, "ran"); }
    EXPECT_THAT(log, ElementsAre());
}

TEST_F(TaskTest, APostedTaskBeginsInATurnOfItsOwn) {
    clock.post([this] { log.push_back("before"); });
    const auto task = Task<>::post(clock, note(log, "posted"));
    clock.post([this] { log.push_back("after"); });
    EXPECT_THAT(log, ElementsAre());
    EXPECT_TRUE(task);
    EXPECT_FALSE(task.isDone());
    clock.runUntilIdle();
    EXPECT_THAT(log, ElementsAre("before", "posted", "after"));
    EXPECT_TRUE(task.isDone());
}

TEST_F(TaskTest, APostedTaskThatIsCancelledBeforeItsTurnSeesThat) {
    const auto task = Task<bool>::post(clock, nestedIsCancelled());
    task.cancel();
    clock.runUntilIdle();
    EXPECT_TRUE(resultOf(task));
}

TEST_F(TaskTest, ADefaultTaskIsAbsentAndCanBeCancelled) {
    const Task<int> none;
    none.cancel();
    EXPECT_FALSE(none);
    EXPECT_FALSE(none.isDone());
}

TEST_F(TaskTest, ADroppedHandleLetsTheTaskRunOn) {
    Task<>::run(noteAfter(clock, 1s, log, "woke"));
    clock.advance(1s);
    EXPECT_THAT(log, ElementsAre("woke"));
}

TEST_F(TaskTest, CancellingAFinishedTaskChangesNothing) {
    const auto task = Task<int>::run(giveAtOnce(3));
    task.cancel();
    EXPECT_EQ(resultOf(task), 3);
}

TEST_F(TaskTest, CancellationIsSeenInsideNestedFunctionsAndInTheirTasksOnly) {
    const auto outer = [](Clock &time, std::array<bool, 2> &seen) -> Async<> {
        seen[0] = co_await nestedIsCancelled();
        co_await sleep(time, 1s);
        seen[1] = co_await nestedIsCancelled();
    };
    std::array<bool, 2> seen{true, false};
    std::array<bool, 2> seenByOther{true, true};
    const auto task = Task<>::run(outer(clock, seen));
    const auto other = Task<>::run(outer(clock, seenByOther));
    EXPECT_FALSE(seen[0]);
    task.cancel();
    clock.advance(1s);
    EXPECT_TRUE(seen[1]);
    EXPECT_TRUE(other.isDone());
    EXPECT_FALSE(seenByOther[1]);
}

TEST_F(TaskTest, CancellingTheAwaiterDoesNotCancelTheTaskItAwaits) {
    const auto inner = Task<int>::run(giveAfter(clock, 1s, 5));
    const auto outer = Task<int>::run(await(inner));
    outer.cancel();
    clock.runUntilIdle();
    EXPECT_FALSE(inner.isDone());
    EXPECT_FALSE(outer.isDone());
    clock.advance(1s);
    EXPECT_EQ(resultOf(outer), 5);
}

TEST_F(TaskTest, SeveralAwaitersGetTheResultInTheOrderInWhichTheyCame) {
    const auto task = Task<int>::run(giveAfter(clock, 1s, 5));
    Task<>::run(awaitAndNote(task, log, "a"));
    Task<>::run(awaitAndNote(task, log, "b"));
    EXPECT_THAT(log, ElementsAre());
    clock.advance(1s);
    Task<>::run(awaitAndNote(task, log, "late"));
    EXPECT_THAT(log, ElementsAre("a5", "b5", "late5"));
}

TEST_F(TaskTest, EachAwaiterGetsACopyOfTheResult) {
    const auto give = [](Clock &time) -> Async<Counted> {
        co_await sleep(time, 1s);
        co_return Counted(9);
    };
    const auto take = [](Task<Counted> task, int &value) -> Async<> {
        const Counted counted = co_await task;
        value = counted.value;
    };
    int first = 0;
    int second = 0;
    {
        const auto task = Task<Counted>::run(give(clock));
        Task<>::run(take(task, first));
        Task<>::run(take(task, second));
        clock.advance(1s);
    }
    EXPECT_EQ(first, 9);
    EXPECT_EQ(second, 9);
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(TaskTest, AnExceptionIsThrownToEachAwaiter) {
    const auto task = Task<int>::run(failAfter(clock, 1s, "broken"));
    const auto first = Task<std::string>::run(errorOf(task));
    const auto second = Task<std::string>::run(errorOf(task));
    clock.advance(1s);
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(resultOf(first), "broken");
    EXPECT_EQ(resultOf(second), "broken");
    EXPECT_EQ(resultOf(Task<std::string>::run(errorOf(task))), "broken");
}

TEST_F(TaskTest, AnExceptionBeforeTheFirstSuspensionGoesToTheAwaiterNotToTheStarter) {
    const auto task = Task<int>::run(fail("at once"));
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(resultOf(Task<std::string>::run(errorOf(task))), "at once");
}

TEST_F(TaskTest, AnExceptionPassesThroughNestedFunctionsAndDestroysTheirLocals) {
    const auto middle = [](Clock &time) -> Async<int> {
        const Counted local(1);
        const int value = co_await failAfter(time, 1s, "deep");
        co_return value + local.value;
    };
    const auto outer = [](Async<int> function) -> Async<int> {
        const Counted local(2);
        const int value = co_await std::move(function);
        co_return value + local.value;
    };
    const auto task = Task<int>::run(outer(middle(clock)));
    EXPECT_EQ(Counted::live, 2);
    clock.advance(1s);
    EXPECT_EQ(Counted::live, 0);
    EXPECT_EQ(resultOf(Task<std::string>::run(errorOf(task))), "deep");
}

TEST_F(TaskTest, ATaskCanAwaitAMillionFinishedFunctionsInARow) {
    const auto loop = [](int count) -> Async<int> {
        int sum = 0;
        for (int i = 0; i < count; ++i)
            sum += co_await giveAtOnce(1);
        co_return sum;
    };
    EXPECT_EQ(resultOf(Task<int>::run(loop(1'000'000))), 1'000'000);
}

TEST_F(TaskTest, SleepEndsAtItsTimeAndNotBefore) {
    const auto task = Task<>::run(sleep(clock, 180ms));
    clock.advance(179ms);
    EXPECT_FALSE(task.isDone());
    clock.advance(1ms);
    EXPECT_TRUE(task.isDone());
}

TEST_F(TaskTest, SleepEndsInTheTurnAfterTheCancelAndLeavesNoTimer) {
    const auto task = Task<>::run(sleep(clock, 1h));
    EXPECT_EQ(clock.timerCount(), 1);
    task.cancel();
    EXPECT_FALSE(task.isDone());
    clock.runUntilIdle();
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(clock.timerCount(), 0);
    EXPECT_EQ(clock.elapsed(), 0s);
}

TEST_F(TaskTest, ACancelledTaskDoesNotSleepAtAll) {
    const auto sleepTwice = [](Clock &time) -> Async<> {
        co_await sleep(time, 1h);
        co_await sleep(time, 1h);
    };
    const auto task = Task<>::run(sleepTwice(clock));
    task.cancel();
    clock.runUntilIdle();
    EXPECT_TRUE(task.isDone());
}

TEST_F(TaskTest, ATaskThatStillWaitsWhenItsClockGoesIsNoLeak) {
    const auto inner = Task<int>::run(giveAfter(clock, 1h, 5));
    Task<int>::run(await(inner));
    EXPECT_EQ(clock.timerCount(), 1);
}

TEST_F(TaskTest, CancelAndTimeInTheSameTurnEndASleepOnce) {
    const auto task = Task<>::run(noteAfter(clock, 1s, log, "woke"));
    clock.callAfter(1s, [&task] { task.cancel(); });
    clock.advance(2s);
    EXPECT_THAT(log, ElementsAre("woke"));

    clock.callAfter(1s, [this] { log.push_back("timer"); });
    std::optional<Task<>> other;
    clock.callAfter(1s, [&other] { other->cancel(); });
    other = Task<>::run(noteAfter(clock, 1s, log, "other"));
    clock.advance(2s);
    EXPECT_THAT(log, ElementsAre("woke", "timer", "other"));
}

TEST_F(TaskTest, OnlyTheFirstResumeOfAContinuationCounts) {
    std::optional<Continuation<int>> continuation;
    const auto task = Task<int>::run(suspendFor(clock, continuation));
    const Continuation<int> copy = *continuation;
    copy.resume(1);
    continuation->resume(2);
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), 1);
    continuation->resume(3);
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), 1);
}

TEST_F(TaskTest, AContinuationResumesInATurnOfItsOwn) {
    std::optional<Continuation<int>> continuation;
    const auto task = Task<int>::run(suspendFor(clock, continuation));
    continuation->resume(1);
    EXPECT_FALSE(task.isDone());
    clock.runUntilIdle();
    EXPECT_TRUE(task.isDone());

    const auto atOnce = [](Clock &time) -> Async<int> {
        const int value =
            co_await suspend<int>(time, [](const Continuation<int> &c) { c.resume(4); });
        co_return value;
    };
    const auto resumedInside = Task<int>::run(atOnce(clock));
    EXPECT_FALSE(resumedInside.isDone());
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(resumedInside), 4);
}

TEST_F(TaskTest, TheValueOfAContinuationIsMovedAndDestroyedOnce) {
    const auto wait = [](Clock &time, std::optional<Continuation<Counted>> &out) -> Async<int> {
        const Counted held(40);
        auto setUp = [&out, held](const Continuation<Counted> &c) { out = c; };
        const Counted counted = co_await suspend<Counted>(time, std::move(setUp));
        co_return counted.value + held.value;
    };
    std::optional<Continuation<Counted>> continuation;
    const auto task = Task<int>::run(wait(clock, continuation));
    continuation->resume(Counted(2));
    continuation.reset();
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), 42);
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(TaskTest, OneOfManyThreadsResumesAndTheTaskGoesOnOnTheMainThread) {
    const auto run = [](Clock &time, std::optional<Continuation<int>> &out,
                        std::thread::id &resumedOn) -> Async<int> {
        const int value =
            co_await suspend<int>(time, [&out](const Continuation<int> &given) { out = given; });
        resumedOn = std::this_thread::get_id();
        co_return value;
    };
    for (int round = 0; round < 200; ++round) {
        std::optional<Continuation<int>> continuation;
        std::thread::id resumedOn;
        const auto task = Task<int>::run(run(clock, continuation, resumedOn));
        std::vector<std::thread> threads;
        for (int i = 1; i <= 4; ++i)
            threads.emplace_back([c = *continuation, i] { c.resume(i); });
        while (!task.isDone())
            clock.runUntilIdle();
        for (std::thread &thread : threads)
            thread.join();
        clock.runUntilIdle();
        const int value = resultOf(task);
        ASSERT_TRUE(value >= 1 && value <= 4) << value;
        ASSERT_EQ(resumedOn, std::this_thread::get_id());
    }
}

TEST_F(TaskTest, BackgroundWorkGivesItsResult) {
    const auto run = [](Clock &time) -> Async<int> {
        const Counted held(6);
        auto work = [held] { return held.value * 7; };
        const int value = co_await inBackground(time, std::move(work));
        co_return value;
    };
    const auto task = Task<int>::run(run(clock));
    EXPECT_FALSE(task.isDone());
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), 42);
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(TaskTest, BackgroundWorkMayGiveNothing) {
    bool ran = false;
    const auto run = [](Clock &time, bool &flag) -> Async<> {
        co_await inBackground(time, [&flag] { flag = true; });
    };
    const auto task = Task<>::run(run(clock, ran));
    EXPECT_FALSE(ran);
    clock.runUntilIdle();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(task.isDone());
}

TEST_F(TaskTest, WhatBackgroundWorkThrowsIsThrownToTheCaller) {
    const auto run = [](Clock &time) -> Async<QString> {
        try {
            co_await inBackground(time, [] { throw LocalizedError(QStringLiteral("disk full")); });
        } catch (const LocalizedError &error) {
            co_return error.localizedDescription();
        }
        co_return QString();
    };
    const auto task = Task<QString>::run(run(clock));
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), QStringLiteral("disk full"));
}

TEST_F(TaskTest, BackgroundWorkOfACancelledTaskStillGivesItsResult) {
    const auto run = [](Clock &time) -> Async<int> {
        const int value = co_await inBackground(time, [] { return 5; });
        const bool cancelled = co_await isCancelled();
        co_return cancelled ? -value : value;
    };
    clock.holdsBackground = true;
    const auto task = Task<int>::run(run(clock));
    task.cancel();
    clock.runUntilIdle();
    EXPECT_FALSE(task.isDone());
    clock.holdsBackground = false;
    clock.runUntilIdle();
    EXPECT_EQ(resultOf(task), -5);
}

TEST_F(TaskTest, ATaskThatIsOverWhenItIsAwaitedDoesNotSuspendTheAwaiter) {
    const auto task = Task<int>::run(giveAtOnce(8));
    const auto awaiting = Task<int>::run(await(task));
    EXPECT_TRUE(awaiting.isDone());
    EXPECT_EQ(resultOf(awaiting), 8);
}

TEST_F(TaskTest, AnAwaiterMayDropTheLastHandleOfItsTask) {
    std::optional<Task<int>> task = Task<int>::run(giveAfter(clock, 1s, 5));
    const auto drop = [](std::optional<Task<int>> &held, int &value) -> Async<> {
        value = co_await *held;
        held.reset();
    };
    int first = 0;
    int second = 0;
    Task<>::run(awaitAndNote(*task, log, "a"));
    Task<>::run(drop(task, first));
    Task<>::run(
        [](Task<int> held, int &value) -> Async<> { value = co_await held; }(*task, second));
    clock.advance(1s);
    EXPECT_EQ(first, 5);
    EXPECT_EQ(second, 5);
}

} // namespace
} // namespace lorvane
