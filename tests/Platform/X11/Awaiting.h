#pragma once

#include "Platform/Task.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace lorvane {

/// What an asynchronous function gives, while the application's events go on. It has to end.
template <class T>
T await(Async<T> function) {
    const auto task = Task<T>::run(std::move(function));
    while (!task.isDone())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return task.operator co_await().await_resume();
}

} // namespace lorvane
