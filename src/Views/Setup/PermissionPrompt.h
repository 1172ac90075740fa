#pragma once

#include "Platform/Clock.h"
#include "Platform/Task.h"

#include <QObject>
#include <QQmlEngine>
#include <QString>

namespace lorvane {

/// Asks the user for a grant in a small window of its own, which needs no main window. Main thread
/// only.
class PermissionPrompt {
public:
    /// `engine` and `clock` outlive the prompt and what it asks.
    PermissionPrompt(QQmlEngine &engine, Clock &clock) : engine_(engine), clock_(clock) {}

    /// True for Allow; false for Don’t Allow and for a window that was closed.
    Async<bool> ask(QString question);

private:
    QQmlEngine &engine_;
    Clock &clock_;
};

/// One question on the screen; it goes with its window.
class PermissionQuestion : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text READ text CONSTANT)
public:
    PermissionQuestion(QString text, Continuation<bool> asker)
        : text_(std::move(text)), asker_(std::move(asker)) {}

    QString text() const { return text_; }
    /// Only the first answer counts.
    Q_INVOKABLE void answer(bool allow) { asker_.resume(allow); }

private:
    QString text_;
    Continuation<bool> asker_;
};

} // namespace lorvane
