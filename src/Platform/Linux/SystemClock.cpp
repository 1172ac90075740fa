#include "Platform/Linux/SystemClock.h"

#include "Core/LocalizedError.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sys/eventfd.h>
#include <unistd.h>

namespace lorvane {

namespace {

/// Qt's own events are allocated; the counter of an eventfd takes a system call and no more.
class EventWakeup final : public Wakeup {
public:
    EventWakeup(Clock::Work work, QObject *owner)
        : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (descriptor_ < 0)
            throw LocalizedError(qt_error_string(errno));
        notifier_ = new QSocketNotifier(descriptor_, QSocketNotifier::Read, owner);
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_,
                         [descriptor = descriptor_, work = std::move(work)] {
                             eventfd_t calls = 0;
                             if (::eventfd_read(descriptor, &calls) == 0)
                                 work();
                         });
    }
    ~EventWakeup() override {
        // Later, for its own work may be what ends it.
        notifier_->setEnabled(false);
        notifier_->deleteLater();
        ::close(descriptor_);
    }

    void wake() noexcept override { ::eventfd_write(descriptor_, 1); }

private:
    int descriptor_;
    QSocketNotifier *notifier_ = nullptr;
};

} // namespace

SystemClock::SystemClock() {
    // Work may wait for a disk; a machine of one core needs a second thread then.
    threads_.setMaxThreadCount(std::max(4, QThreadPool::globalInstance()->maxThreadCount()));
}

SystemClock::~SystemClock() { threads_.waitForDone(); }

QDateTime SystemClock::now() const { return QDateTime::currentDateTimeUtc(); }

void SystemClock::post(Work work) { queue_.post(std::move(work)); }

std::unique_ptr<Wakeup> SystemClock::makeWakeup(Work work) {
    return std::make_unique<EventWakeup>(std::move(work), &queue_);
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
