#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <coroutine>

namespace lorvane {

/// Suspends the caller until another process has answered, or hasn't within the call's limit.
///     const QDBusMessage answer = co_await answerTo(call);
/// Main thread only.
inline auto answerTo(const QDBusPendingCall &call) {
    struct Awaiter {
        QDBusPendingCall call;
        bool await_ready() const { return call.isFinished(); }
        void await_suspend(std::coroutine_handle<> caller) const {
            auto *const watcher = new QDBusPendingCallWatcher(call);
            QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                             [watcher, caller] {
                                 watcher->deleteLater();
                                 caller.resume();
                             });
        }
        QDBusMessage await_resume() const { return call.reply(); }
    };
    return Awaiter{call};
}

} // namespace lorvane
