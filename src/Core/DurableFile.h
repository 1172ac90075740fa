#pragma once

#include "Core/ByteSink.h"
#include "Core/SystemCalls.h"

#include <QString>

namespace lorvane {

/// Creates the folder with all that is missing above it, each for its owner alone (mode 0700). An
/// existing folder is no error. Throws FileError.
void createFolder(const QString &path, SystemCalls &calls);

/// Replaces the file by what `writeContents` hands to its sink, in one step that survives a crash,
/// and leaves it with mode 0600. A symbolic link is followed and stays one. Throws FileError, and
/// passes on what `writeContents` throws; until the step is taken the old file stands, and no other
/// file is left beside it.
void replaceFile(const QString &path, const std::function<void(const ByteSink &)> &writeContents,
                 SystemCalls &calls);

} // namespace lorvane
