#include "Fakes/FakeClock.h"
#include "Platform/Linux/SystemClock.h"

#include <QCoreApplication>
#include <QTimer>

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace lorvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using testing::ElementsAre;

struct OnFakeClock {
    FakeClock clock;

    template <class Condition>
    void runUntil(Condition condition) {
        clock.runUntilIdle();
        for (int i = 0; i < 10'000 && !condition(); ++i)
            clock.advance(1ms);
    }
};

struct OnSystemClock {
    int count = 0;
    QCoreApplication application{count, nullptr};
    SystemClock clock;

    template <class Condition>
    void runUntil(Condition condition) {
        QTimer limit;
        limit.start(10s); // an event to wait for when nothing else comes
        for (const auto end = clock.now().addSecs(10); !condition() && clock.now() < end;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
};

/// What holds for every clock.
template <class Driver>
class ClockTest : public testing::Test {
protected:
    void note(const std::string &entry) { log.push_back(entry); }
    void runUntilNoted(size_t count) {
        driver.runUntil([&] { return log.size() >= count; });
    }

    Driver driver;
    Clock &clock = driver.clock;
    std::vector<std::string> log;
};

using Drivers = testing::Types<OnFakeClock, OnSystemClock>;
TYPED_TEST_SUITE(ClockTest, Drivers);

TYPED_TEST(ClockTest, PostedWorkRunsLaterOnTheMainThreadInOrder) {
    const auto mainThread = std::this_thread::get_id();
    this->clock.post([&] {
        this->note("a");
        this->clock.post([&] { this->note("c"); });
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
    });
    this->clock.post([&] { this->note("b"); });
    EXPECT_THAT(this->log, ElementsAre());
    this->runUntilNoted(3);
    EXPECT_THAT(this->log, ElementsAre("a", "b", "c"));
}

TYPED_TEST(ClockTest, WorkPostedByAThreadKeepsItsOrderAndRunsOnTheMainThread) {
    constexpr int threadCount = 4;
    constexpr int workCount = 500;
    const auto mainThread = std::this_thread::get_id();
    std::vector<int> last(threadCount, -1);
    int total = 0;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            for (int number = 0; number < workCount; ++number) {
                this->clock.post([&, i, number] {
                    EXPECT_EQ(last[i], number - 1);
                    EXPECT_EQ(std::this_thread::get_id(), mainThread);
                    last[i] = number;
                    ++total;
                });
            }
        });
    }
    this->driver.runUntil([&] { return total == threadCount * workCount; });
    for (std::thread &thread : threads)
        thread.join();
    this->driver.runUntil([&] { return total == threadCount * workCount; });
    EXPECT_EQ(total, threadCount * workCount);
}

TYPED_TEST(ClockTest, AWakeupRunsItsWorkOnceForTheCallsBeforeIt) {
    const auto mainThread = std::this_thread::get_id();
    const auto wakeup = this->clock.makeWakeup([&] {
        this->note("woken");
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
    });
    std::thread([&] {
        wakeup->wake();
        wakeup->wake();
    }).join();
    EXPECT_THAT(this->log, ElementsAre());
    this->runUntilNoted(1);
    this->clock.callAfter(5ms, [&] { this->note("later"); });
    this->runUntilNoted(2);
    EXPECT_THAT(this->log, ElementsAre("woken", "later"));
    wakeup->wake();
    this->runUntilNoted(3);
    EXPECT_EQ(this->log.back(), "woken");
}

TYPED_TEST(ClockTest, AWakeupThatItsOwnWorkOrAnotherEndsRunsNoMore) {
    std::unique_ptr<Wakeup> wakeup;
    wakeup = this->clock.makeWakeup([&] {
        wakeup.reset();
        this->note("last");
    });
    wakeup->wake();
    this->runUntilNoted(1);
    wakeup = this->clock.makeWakeup([&] { this->note("never"); });
    wakeup->wake();
    wakeup.reset();
    this->clock.callAfter(5ms, [&] { this->note("end"); });
    this->runUntilNoted(2);
    EXPECT_THAT(this->log, ElementsAre("last", "end"));
}

TYPED_TEST(ClockTest, ATimerFiresOnceAndNotBeforeItsTime) {
    const QDateTime start = this->clock.now();
    this->clock.callAfter(20ms, [&] { this->note("fired"); });
    EXPECT_THAT(this->log, ElementsAre());
    this->runUntilNoted(1);
    EXPECT_GE(start.msecsTo(this->clock.now()), 20);
    this->clock.callAfter(30ms, [&] { this->note("later"); });
    this->runUntilNoted(2);
    EXPECT_THAT(this->log, ElementsAre("fired", "later"));
}

TYPED_TEST(ClockTest, ATimerOfLessThanAMillisecondOrNoneFiresInALaterTurn) {
    this->clock.callAfter(0ns, [&] { this->note("none"); });
    this->clock.callAfter(10us, [&] { this->note("short"); });
    this->clock.callAfter(-1s, [&] { this->note("past"); });
    EXPECT_THAT(this->log, ElementsAre());
    this->runUntilNoted(3);
    EXPECT_EQ(this->log.size(), 3U);
}

TYPED_TEST(ClockTest, TimersFireInTheOrderOfTheirTimes) {
    this->clock.callAfter(30ms, [&] { this->note("30"); });
    this->clock.callAfter(10ms, [&] { this->note("10"); });
    this->clock.callAfter(20ms, [&] { this->note("20"); });
    this->runUntilNoted(3);
    EXPECT_THAT(this->log, ElementsAre("10", "20", "30"));
}

TYPED_TEST(ClockTest, ACancelledTimerNeverFires) {
    const auto timer = this->clock.callAfter(5ms, [&] { this->note("cancelled"); });
    this->clock.callAfter(20ms, [&] { this->note("kept"); });
    this->clock.cancelTimer(timer);
    this->runUntilNoted(1);
    EXPECT_THAT(this->log, ElementsAre("kept"));
}

TYPED_TEST(ClockTest, ATimerCanCancelAnotherThatIsDueInTheSameTurn) {
    Clock::TimerId second = 0;
    this->clock.callAfter(5ms, [&] {
        this->note("first");
        this->clock.cancelTimer(second);
    });
    second = this->clock.callAfter(5ms, [&] { this->note("second"); });
    this->clock.callAfter(20ms, [&] { this->note("end"); });
    this->runUntilNoted(2);
    EXPECT_THAT(this->log, ElementsAre("first", "end"));
}

TYPED_TEST(ClockTest, CancellingAFiredOrUnknownTimerHarmsNoOther) {
    Clock::TimerId own = 0;
    own = this->clock.callAfter(1ms, [&] {
        this->clock.cancelTimer(own);
        this->note("fired");
    });
    this->runUntilNoted(1);
    this->clock.callAfter(1ms, [&] { this->note("next"); });
    this->clock.cancelTimer(own);
    this->clock.cancelTimer(123456);
    this->runUntilNoted(2);
    EXPECT_THAT(this->log, ElementsAre("fired", "next"));
}

TYPED_TEST(ClockTest, AFiredTimerLetsGoOfItsWork) {
    auto held = std::make_shared<int>(0);
    this->clock.callAfter(1ms, [&, held] { this->note("fired"); });
    EXPECT_EQ(held.use_count(), 2);
    this->runUntilNoted(1);
    this->clock.post([&] { this->note("after"); });
    this->runUntilNoted(2);
    this->driver.runUntil([&] { return held.use_count() == 1; });
    EXPECT_EQ(held.use_count(), 1);
}

TYPED_TEST(ClockTest, BackgroundWorkRunsAndCanPostItsResult) {
    this->clock.runInBackground([&] { this->clock.post([&] { this->note("result"); }); });
    this->runUntilNoted(1);
    EXPECT_THAT(this->log, ElementsAre("result"));
}

TYPED_TEST(ClockTest, TimeDoesNotRunBackAndIsInUtc) {
    const QDateTime start = this->clock.now();
    EXPECT_EQ(start.timeSpec(), Qt::UTC);
    this->clock.callAfter(3ms, [&] { this->note("fired"); });
    this->runUntilNoted(1);
    EXPECT_LT(start, this->clock.now());
}

TEST(SystemClockTest, BackgroundWorkRunsOnAnotherThreadAndTheClockWaitsForIt) {
    std::atomic<bool> done = false;
    std::thread::id ranOn;
    {
        OnSystemClock driver;
        std::atomic<bool> *flag = &done;
        driver.clock.runInBackground([&ranOn, flag] {
            ranOn = std::this_thread::get_id();
            *flag = true;
        });
    }
    EXPECT_TRUE(done);
    EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(SystemClockTest, WhatWasPostedToAClockThatIsGoneDoesNotRun) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    bool ran = false;
    {
        SystemClock clock;
        clock.post([&] { ran = true; });
        clock.callAfter(0ms, [&] { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(FakeClockTest, AdvanceRunsPostedWorkBetweenTimers) {
    FakeClock clock;
    std::vector<std::string> log;
    clock.callAfter(1s, [&] {
        log.push_back("first");
        clock.post([&] { log.push_back("posted"); });
        clock.callAfter(500ms, [&] { log.push_back("chained"); });
    });
    clock.callAfter(2s, [&] { log.push_back("second"); });
    clock.callAfter(3s, [&] { log.push_back("too late"); });
    clock.advance(2s);
    EXPECT_THAT(log, ElementsAre("first", "posted", "chained", "second"));
    EXPECT_EQ(clock.elapsed(), 2s);
    EXPECT_EQ(clock.timerCount(), 1);
}

TEST(FakeClockTest, HeldBackgroundWorkWaitsForTheTest) {
    FakeClock clock;
    bool ran = false;
    clock.holdsBackground = true;
    clock.runInBackground([&] { ran = true; });
    clock.advance(1h);
    EXPECT_FALSE(ran);
    clock.holdsBackground = false;
    clock.runUntilIdle();
    EXPECT_TRUE(ran);
}

TEST(FakeClockTest, OneTurnRunsTheOldestPostedWorkOnly) {
    FakeClock clock;
    std::vector<std::string> log;
    clock.post([&] { log.push_back("a"); });
    clock.post([&] { log.push_back("b"); });
    EXPECT_TRUE(clock.runOnePosted());
    EXPECT_THAT(log, ElementsAre("a"));
    EXPECT_TRUE(clock.runOnePosted());
    EXPECT_FALSE(clock.runOnePosted());
}

} // namespace
} // namespace lorvane
