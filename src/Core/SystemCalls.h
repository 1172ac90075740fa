#pragma once

#include <cstddef>

#include <sys/types.h>

namespace lorvane {

/// The calls of the system by which a file is replaced, each named and returning as there, errno
/// included. Made to be overridden by a double that lets one of them fail.
class SystemCalls {
public:
    SystemCalls() = default;
    SystemCalls(const SystemCalls &) = delete;
    SystemCalls &operator=(const SystemCalls &) = delete;
    virtual ~SystemCalls() = default;

    static SystemCalls &real();

    virtual int mkdir(const char *path, mode_t mode);
    virtual ssize_t readlink(const char *path, char *buffer, std::size_t size);
    virtual int open(const char *path, int flags);
    /// `name` ends in "XXXXXX", which becomes what makes it unique; the file's mode is 0600.
    virtual int mkostemp(char *name, int flags);
    virtual ssize_t write(int file, const void *bytes, std::size_t size);
    virtual int fsync(int file);
    virtual int close(int file);
    virtual int rename(const char *from, const char *to);
    virtual int chmod(const char *path, mode_t mode);
    virtual int unlink(const char *path);
};

} // namespace lorvane
