#include "Core/SystemCalls.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lorvane {

SystemCalls &SystemCalls::real() {
    static SystemCalls calls;
    return calls;
}

int SystemCalls::mkdir(const char *path, mode_t mode) { return ::mkdir(path, mode); }

ssize_t SystemCalls::readlink(const char *path, char *buffer, std::size_t size) {
    return ::readlink(path, buffer, size);
}

int SystemCalls::open(const char *path, int flags) { return ::open(path, flags); }

int SystemCalls::mkostemp(char *name, int flags) { return ::mkostemp(name, flags); }

ssize_t SystemCalls::write(int file, const void *bytes, std::size_t size) {
    return ::write(file, bytes, size);
}

int SystemCalls::fsync(int file) { return ::fsync(file); }

int SystemCalls::close(int file) { return ::close(file); }

int SystemCalls::rename(const char *from, const char *to) { return ::rename(from, to); }

int SystemCalls::chmod(const char *path, mode_t mode) { return ::chmod(path, mode); }

int SystemCalls::unlink(const char *path) { return ::unlink(path); }

} // namespace lorvane
