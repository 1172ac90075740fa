#include "Platform/Linux/SystemClock.h"

#include <QCoreApplication>
#include <QEvent>
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

void SystemClock::post(Work work) { queue_.post(std::move(work)); }

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

void SystemClock::runInBackground(Work work) {
    background_.put(std::move(work));
    threads_.start([this] { background_.take()(); });
}

void SystemClock::MainQueue::post(Work work) {
    posted_.put(std::move(work));
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool SystemClock::MainQueue::event(QEvent *event) {
    if (event->type() != QEvent::User)
        return QObject::event(event);
    posted_.take()();
    return true;
}

void SystemClock::Handover::put(Work work) {
    const std::lock_guard lock(mutex_);
    works_.push_back(std::move(work));
}

Clock::Work SystemClock::Handover::take() {
    const std::lock_guard lock(mutex_);
    Work work = std::move(works_.front());
    works_.pop_front();
    return work;
}

} // namespace lorvane
