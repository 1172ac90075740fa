#include "Platform/Linux/ProcessTable.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

#include <optional>

namespace lorvane::ProcessTable {

namespace {

struct Process {
    char state = 0;
    quint64 startTime = 0;
};

/// Reads /proc/<id>/stat, see proc(5).
std::optional<Process> find(qint64 processId) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId));
    if (processId <= 0 || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray line = file.readAll();
    // The second field is the name in brackets, which may hold blanks and brackets itself; what
    // follows it begins with the third field.
    const auto fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype state = 3 - 3;
    constexpr qsizetype startTime = 22 - 3;
    if (fields.size() <= startTime || fields[state].isEmpty())
        return std::nullopt;
    return Process{fields[state].front(), fields[startTime].toULongLong()};
}

} // namespace

quint64 startTime(qint64 processId) {
    const auto process = find(processId);
    return process ? process->startTime : 0;
}

bool isRunning(qint64 processId, quint64 startTime) {
    const auto process = find(processId);
    if (!process || process->state == 'Z' || process->state == 'X')
        return false;
    return startTime == 0 || process->startTime == startTime;
}

} // namespace lorvane::ProcessTable
