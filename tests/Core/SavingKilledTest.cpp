#include "Core/LocalRepository.h"
#include "Core/Printing.h"
#include "Core/Random.h"

#include <QTemporaryDir>

#include <atomic>
#include <chrono>
#include <csignal>
#include <new>

#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using std::chrono::nanoseconds;

/// A library in whose every text the number of its save stands.
AppSnapshot numbered(int number) {
    AppSnapshot snapshot{.scratchpad = QString::number(number)};
    const QDateTime date(QDate(2026, 3, 14), QTime(9, 26, 53), Qt::UTC);
    for (int i = 0; i < 200; ++i)
        snapshot.history.append({QUuid(), date, u"save %1 "_s.arg(number).repeated(20), 1.0 * i});
    return snapshot;
}

/// The kernel kills this process after `delay`, wherever it is then.
void dieAfter(nanoseconds delay) {
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    timer_t timer;
    itimerspec time{};
    time.it_value.tv_sec = delay.count() / 1'000'000'000;
    time.it_value.tv_nsec = delay.count() % 1'000'000'000 + 1;
    if (::timer_create(CLOCK_MONOTONIC, &event, &timer) != 0 ||
        ::timer_settime(timer, 0, &time, nullptr) != 0)
        ::_exit(1);
}

TEST(SavingKilled, TwoHundredTimesLeavesTheLastOrTheNextLibraryWhole) {
    Random random;
    const QTemporaryDir folder;
    const LocalRepository repository(folder.filePath(u"library.json"_s));
    repository.save(numbered(0));

    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 5; ++i)
        repository.save(numbered(0));
    const nanoseconds oneSave = (std::chrono::steady_clock::now() - start) / 5;

    // The number of the last save that returned, told across the processes.
    void *shared = ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto *lastSaved = new (shared) std::atomic<int>(0);

    int inTheMiddle = 0;
    for (int round = 0; round < 200; ++round) {
        const nanoseconds delay(
            static_cast<qint64>(static_cast<double>(oneSave.count()) * random.real(0, 6)));
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            dieAfter(delay);
            for (int number = *lastSaved + 1;; ++number) {
                repository.save(numbered(number));
                *lastSaved = number;
            }
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

        const AppSnapshot left = repository.load();
        const int number = left.scratchpad.toInt();
        ASSERT_EQ(left, numbered(number));
        ASSERT_TRUE(number == *lastSaved || number == *lastSaved + 1) << number;
        inTheMiddle += number == *lastSaved + 1;
        *lastSaved = number;
    }
    std::cout << *lastSaved << " saves in 200 processes, one of " << oneSave.count() / 1000
              << " µs; " << inTheMiddle << " killed between replacing the file and returning\n";
    EXPECT_GT(*lastSaved, 0);
    ::munmap(shared, sizeof(std::atomic<int>));
}

} // namespace
} // namespace lorvane
