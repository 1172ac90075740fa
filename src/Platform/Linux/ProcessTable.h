#pragma once

#include <QtGlobal>

namespace lorvane::ProcessTable {

/// When a process started, in the kernel's ticks since the machine did; 0 if there is none.
quint64 startTime(qint64 processId);

/// Whether the process that started then still runs. One that has ended and waits to be collected
/// doesn't; a start time of 0 fits any.
bool isRunning(qint64 processId, quint64 startTime);

} // namespace lorvane::ProcessTable
