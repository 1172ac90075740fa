#include "LorvaneApp/TerminationSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace lorvane {

namespace {

sigset_t terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

int openDescriptor() {
    const sigset_t signals = terminationSignals();
    return signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

} // namespace

void TerminationSignals::block() {
    const sigset_t signals = terminationSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(std::function<void()> terminate)
    : descriptor_(openDescriptor()), notifier_(descriptor_, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated,
                     [this, terminate = std::move(terminate)] {
                         signalfd_siginfo info;
                         if (read(descriptor_, &info, sizeof info) == sizeof info)
                             terminate();
                     });
}

TerminationSignals::~TerminationSignals() {
    notifier_.setEnabled(false);
    close(descriptor_);
}

} // namespace lorvane
