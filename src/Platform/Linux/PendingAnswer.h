#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <coroutine>

namespace lorvane {

/// Suspends the caller until another process has answered, or hasn't within the call's limit; for
/// ever, if its owner goes before that. Main thread only.
///     const QDBusMessage answer = co_await answerTo(call, this);
inline auto answerTo(const QDBusPendingCall &call, QObject *owner) {
    struct Awaiter {
        QDBusPendingCall call;
        QObject *owner;
        bool await_ready() const { return call.isFinished(); }
        void await_suspend(std::coroutine_handle<> caller) const {
            auto *const watcher = new QDBusPendingCallWatcher(call, owner);
            QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                             [watcher, caller] {
                                 watcher->deleteLater();
                                 caller.resume();
                             });
        }
        QDBusMessage await_resume() const { return call.reply(); }
    };
    return Awaiter{call, owner};
}

} // namespace lorvane
