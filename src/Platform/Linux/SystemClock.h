#pragma once

#include "Platform/Clock.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>

class QTimer;

namespace lorvane {

/// The clock of the system on the event loop of the thread that made it, which is the main thread.
/// It waits for its background work when it is destroyed.
class SystemClock final : public Clock {
public:
    SystemClock();
    ~SystemClock() override;

    QDateTime now() const override;
    void post(Work work) override;
    TimerId callAfter(std::chrono::nanoseconds delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    void runInBackground(Work work) override;

private:
    QObject queue_; // receives what is posted and owns the timers
    QHash<TimerId, QTimer *> timers_;
    TimerId lastTimer_ = 0;
    QThreadPool threads_;
};

} // namespace lorvane
