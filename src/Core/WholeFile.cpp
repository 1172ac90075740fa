#include "Core/WholeFile.h"

#include "Core/FileError.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lorvane {

std::optional<QByteArray> readFile(const QString &path) {
    const auto failure = [&path] {
        return FileError(path, QStringLiteral("could not be read"), errno);
    };
    // Not waiting for whoever might open the other end, were it a pipe.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0 && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    if (descriptor < 0)
        throw failure();
    struct Close {
        int descriptor;
        ~Close() { ::close(descriptor); }
    } close{descriptor};

    struct stat status;
    if (::fstat(descriptor, &status) < 0)
        throw failure();
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) // some devices have no end
        throw FileError(path, QStringLiteral("is not a regular file"), ENOTSUP);
    // One byte more than there should be, to meet the end of the file without growing.
    QByteArray bytes(status.st_size + 1, Qt::Uninitialized);
    qsizetype size = 0;
    while (true) {
        const ssize_t count =
            ::read(descriptor, bytes.data() + size, static_cast<std::size_t>(bytes.size() - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw failure();
        if (count == 0)
            break;
        size += count;
        if (size == bytes.size())
            bytes.resize(2 * size);
    }
    bytes.truncate(size);
    return bytes;
}

} // namespace lorvane
