// Linked with the program's own objects: a thread that asks the event loop for a sign of life all
// the time, and tells on standard error when the main thread let it wait, and where it was then.
// SIGUSR1 asks for the sum of all that was since the last one.

#include <QCoreApplication>
#include <QMetaObject>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <execinfo.h>
#include <memory>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr auto interval = 2ms;
constexpr auto worthTelling = 25ms;

/// How long a thread has been ready to run but had no processor, in its whole life.
Milliseconds processorWait(pid_t thread) {
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/schedstat";
    unsigned long long ran = 0;
    unsigned long long waited = 0;
    if (std::FILE *const file = std::fopen(path.c_str(), "r")) {
        if (std::fscanf(file, "%llu %llu", &ran, &waited) != 2)
            waited = 0;
        std::fclose(file);
    }
    return std::chrono::nanoseconds(waited);
}

/// What a thread has had of the processors, in its whole life.
Milliseconds processorTime(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::atomic<bool> sumIsWanted = false;

void wantSum(int) { sumIsWanted = true; }

void tellWhereItIs(int) {
    void *frames[64];
    const int count = backtrace(frames, 64);
    backtrace_symbols_fd(frames, count, STDERR_FILENO);
}

class EventLoopWatchdog {
public:
    EventLoopWatchdog() : main_(pthread_self()), mainId_(gettid()) {
        pthread_getcpuclockid(main_, &clock_);
        void *frames[1];
        backtrace(frames, 1); // it loads what a signal handler mustn't
        std::signal(SIGUSR1, wantSum);
        std::signal(SIGUSR2, tellWhereItIs);
        thread_ = std::jthread([this](const std::stop_token &stop) {
            while (!stop.stop_requested()) {
                ask(stop);
                if (sumIsWanted.exchange(false))
                    tellSum();
                std::this_thread::sleep_for(interval);
            }
        });
    }

    ~EventLoopWatchdog() {
        thread_.request_stop();
        thread_.join();
    }

private:
    /// What the main thread says as soon as it gets round to it.
    struct Answer {
        std::atomic<bool> isGiven = false;
        SteadyClock::time_point time;
        Milliseconds processorWait{0};
        Milliseconds processorTime{0};
    };

    void ask(const std::stop_token &stop) {
        const auto answer = std::make_shared<Answer>();
        const Milliseconds waitedBefore = processorWait(mainId_);
        const Milliseconds ranBefore = processorTime(clock_);
        const auto asked = SteadyClock::now();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [answer] {
                answer->time = SteadyClock::now();
                answer->processorWait = processorWait(gettid());
                answer->processorTime = processorTime(CLOCK_THREAD_CPUTIME_ID);
                answer->isGiven = true;
            },
            Qt::QueuedConnection);
        bool isTold = false;
        while (!answer->isGiven) {
            if (stop.stop_requested())
                return;
            std::this_thread::sleep_for(100us);
            if (!isTold && SteadyClock::now() - asked > worthTelling) {
                isTold = true;
                pthread_kill(main_, SIGUSR2);
            }
        }
        const Milliseconds wait = answer->time - asked;
        const Milliseconds computing =
            std::min(wait, Milliseconds(answer->processorTime - ranBefore));
        // While others have the processors, nobody answers soon: that is not the program's doing.
        const Milliseconds starving =
            std::min(wait - computing, Milliseconds(answer->processorWait - waitedBefore));
        waits_.push_back(wait);
        mostComputing_ = std::max(mostComputing_, computing);
        if (wait > worthTelling)
            std::fprintf(stderr,
                         "Event loop: %.1f ms, computing %.1f, waiting for others %.1f, for a "
                         "processor %.1f\n",
                         wait.count(), computing.count(), (wait - computing - starving).count(),
                         starving.count());
    }

    void tellSum() {
        std::sort(waits_.begin(), waits_.end());
        const auto part = [this](double share) {
            const auto last = static_cast<double>(waits_.size() - 1);
            return waits_[static_cast<std::size_t>(share * last)].count();
        };
        std::fprintf(stderr,
                     "Event loop: asked %zu times, median %.2f ms, 99 of 100 %.1f, worst %.1f, "
                     "most computing %.1f\n",
                     waits_.size(), part(0.5), part(0.99), part(1), mostComputing_.count());
        waits_.clear();
        mostComputing_ = {};
    }

    pthread_t main_;
    pid_t mainId_;
    clockid_t clock_{};
    std::vector<Milliseconds> waits_; ///< since the last sum
    Milliseconds mostComputing_{0};
    std::jthread thread_;
};

std::unique_ptr<EventLoopWatchdog> watchdog;

void start() {
    watchdog = std::make_unique<EventLoopWatchdog>();
    qAddPostRoutine([] { watchdog.reset(); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(start)
