#include "Platform/Linux/SystemClock.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace lorvane {

SystemClock::SystemClock() {
    // Work may wait for a disk; a machine of one core needs a second thread then.
    threads_.setMaxThreadCount(std::max(4, QThreadPool::globalInstance()->maxThreadCount()));
}

SystemClock::~SystemClock() { threads_.waitForDone(); }

QDateTime SystemClock::now() const { return QDateTime::currentDateTimeUtc(); }

void SystemClock::post(Work work) {
    QMetaObject::invokeMethod(&queue_, std::move(work), Qt::QueuedConnection);
}

Clock::TimerId SystemClock::callAfter(std::chrono::nanoseconds delay, Work work) {
    using std::chrono::milliseconds;
    const milliseconds longest(std::numeric_limits<int>::max());
    const auto wait = std::clamp(std::chrono::ceil<milliseconds>(delay), milliseconds(0), longest);

    const TimerId id = ++lastTimer_;
    auto *timer = new QTimer(&queue_);
    timer->setTimerType(Qt::PreciseTimer); // a coarse one may be early
    timer->setSingleShot(true);
    timer->callOnTimeout(&queue_, [this, id, run = std::move(work)] {
        timers_.take(id)->deleteLater();
        run();
    });
    timers_.insert(id, timer);
    timer->start(wait);
    return id;
}

void SystemClock::cancelTimer(TimerId timer) { delete timers_.take(timer); }

void SystemClock::runInBackground(Work work) { threads_.start(std::move(work)); }

} // namespace lorvane
