#pragma once

#include <QSocketNotifier>

#include <functional>

namespace lorvane {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program can end as
/// it does when the user quits it. One at a time.
class TerminationSignals {
public:
    /// Keeps the signals from ending the process. To be called before any other thread starts,
    /// since threads inherit what is blocked.
    static void block();

    /// Needs an application object.
    explicit TerminationSignals(std::function<void()> terminate);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

private:
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace lorvane
