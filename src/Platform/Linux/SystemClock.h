#pragma once

#include "Platform/Clock.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>

#include <deque>
#include <mutex>

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
    std::unique_ptr<Wakeup> makeWakeup(Work work) override;
    TimerId callAfter(std::chrono::nanoseconds delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    void runInBackground(Work work) override;

private:
    /// Hands work from thread to thread under a lock of our own, which the thread sanitizer can
    /// follow; it can't follow Qt's.
    class Handover {
    public:
        void put(Work work);
        Work take();

    private:
        std::mutex mutex_;
        std::deque<Work> works_;
    };

    /// Runs one piece of posted work for each event that reaches it, and owns the timers.
    class MainQueue final : public QObject {
    public:
        void post(Work work);
        bool event(QEvent *event) override;

    private:
        Handover posted_;
    };

    MainQueue queue_;
    QHash<TimerId, QTimer *> timers_;
    TimerId lastTimer_ = 0;
    Handover background_;
    QThreadPool threads_;
};

} // namespace lorvane
