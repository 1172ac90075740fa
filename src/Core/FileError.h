#pragma once

#include "Core/LocalizedError.h"

namespace lorvane {

/// A call of the file system that failed, with the system's own reason.
class FileError : public LocalizedError {
public:
    /// `failure` completes "“path” ", such as "could not be read"; `code` is an errno.
    FileError(const QString &path, const QString &failure, int code)
        : LocalizedError(QStringLiteral("“%1” %2: %3.").arg(path, failure, qt_error_string(code))),
          code_(code) {}

    int code() const { return code_; }

private:
    int code_;
};

} // namespace lorvane
