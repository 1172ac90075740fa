#include "Speech/RecognitionWorker.h"

#include <gtest/gtest.h>

#include <future>
#include <string>

#include <sys/resource.h>

namespace lorvane {
namespace {

using TimePoint = RecognitionWorker::TimePoint;

Turns turns(1);

/// Returns when the source of a job is asked to stop.
void waitForStop(std::stop_source &stop) {
    std::promise<void> stopped;
    const std::stop_callback callback(stop.get_token(), [&stopped] { stopped.set_value(); });
    stopped.get_future().wait();
}

TEST(RecognitionWorker, RunsJobsInTheirOrderAndBackgroundJobsAfterThem) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<void> release;
    std::promise<void> done;
    std::string order;
    worker.post([&](std::stop_source &) { release.get_future().wait(); });
    worker.postInBackground(TimePoint(), [&](std::stop_source &) {
        order += 'c';
        done.set_value();
    });
    worker.post([&](std::stop_source &) { order += 'a'; });
    worker.post([&](std::stop_source &) { order += 'b'; });
    release.set_value();
    done.get_future().wait();
    EXPECT_EQ(order, "abc");
}

TEST(RecognitionWorker, StopsABackgroundJobWhenAnotherJobComes) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<void> running;
    std::promise<void> done;
    worker.postInBackground(TimePoint(), [&](std::stop_source &stop) {
        running.set_value();
        waitForStop(stop);
    });
    running.get_future().wait();
    worker.post([&](std::stop_source &stop) {
        EXPECT_FALSE(stop.stop_requested());
        done.set_value();
    });
    done.get_future().wait();
}

TEST(RecognitionWorker, LetsAJobFinishWhenAnotherComes) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<void> running;
    std::promise<void> posted;
    std::promise<bool> stopped;
    worker.post([&](std::stop_source &stop) {
        running.set_value();
        posted.get_future().wait();
        stopped.set_value(stop.stop_requested());
    });
    running.get_future().wait();
    worker.post([](std::stop_source &) {});
    posted.set_value();
    EXPECT_FALSE(stopped.get_future().get());
}

TEST(RecognitionWorker, LetsABackgroundJobFinishThatIsWaitedFor) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<void> running;
    std::promise<void> posted;
    std::promise<void> done;
    std::string order;
    worker.postInBackground(TimePoint(), [&](std::stop_source &stop) {
        running.set_value();
        posted.get_future().wait();
        order += stop.stop_requested() ? 'x' : 'a';
    });
    running.get_future().wait();
    worker.postAfterBackground([&](std::stop_source &) {
        order += 'b';
        done.set_value();
    });
    posted.set_value();
    done.get_future().wait();
    EXPECT_EQ(order, "ab");
}

TEST(RecognitionWorker, RunsBackgroundJobsByTheTimeItIsGiven) {
    std::atomic<std::chrono::minutes> past{std::chrono::minutes(0)};
    const TimePoint start = TimePoint::clock::now();
    RecognitionWorker worker(turns, Urgency::preview, [&] { return start + past.load(); });
    std::promise<void> done;
    std::string order;
    worker.postInBackground(start + std::chrono::minutes(10), [&](std::stop_source &) {
        order += 'b';
        done.set_value();
    });
    const auto wake = [&] {
        std::promise<void> awake;
        worker.post([&](std::stop_source &) {
            order += 'a';
            awake.set_value();
        });
        awake.get_future().wait();
    };
    past = std::chrono::minutes(9);
    wake();
    wake();
    EXPECT_EQ(order, "aa");
    worker.post([&](std::stop_source &) {
        order += 'a';
        past = std::chrono::minutes(10); // in a job, else the other one might come before it
    });
    done.get_future().wait();
    EXPECT_EQ(order, "aaab");
}

TEST(RecognitionWorker, RunsBackgroundJobsByTheirTime) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<void> release;
    std::promise<void> done;
    std::string order;
    worker.post([&](std::stop_source &) { release.get_future().wait(); });
    const TimePoint now = TimePoint::clock::now();
    worker.postInBackground(now, [&](std::stop_source &) {
        order += 'b';
        done.set_value();
    });
    worker.postInBackground(now - std::chrono::hours(1), [&](std::stop_source &) { order += 'a'; });
    worker.postInBackground(now + std::chrono::hours(1), [&](std::stop_source &) { order += 'z'; });
    release.set_value();
    done.get_future().wait();
    EXPECT_EQ(order, "ab");
}

/// How much the calling thread gives way to other programs.
int niceness() { return getpriority(PRIO_PROCESS, 0); }

TEST(RecognitionWorker, GivesNoWayToOtherPrograms) {
    RecognitionWorker worker(turns, Urgency::preview);
    std::promise<int> awaited;
    std::promise<int> background;
    worker.post([&](std::stop_source &) { awaited.set_value(niceness()); });
    EXPECT_EQ(awaited.get_future().get(), niceness());
    worker.postInBackground(TimePoint(),
                            [&](std::stop_source &) { background.set_value(niceness()); });
    EXPECT_EQ(background.get_future().get(), niceness());
}

TEST(RecognitionWorker, StopsTheRunningJobAndForgetsTheOthersAtItsEnd) {
    bool ran = false;
    std::promise<void> running;
    {
        RecognitionWorker worker(turns, Urgency::preview);
        worker.post([&](std::stop_source &stop) {
            running.set_value();
            waitForStop(stop);
        });
        worker.post([&](std::stop_source &) { ran = true; });
        running.get_future().wait();
    }
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace lorvane
