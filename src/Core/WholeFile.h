#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace lorvane {

/// The file's bytes; nothing when there is no such file. Throws FileError, also for what is no
/// regular file, and never waits for the other end of a pipe.
std::optional<QByteArray> readFile(const QString &path);

} // namespace lorvane
