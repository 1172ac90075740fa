#include "Core/DurableFile.h"

#include "Core/FileError.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <climits>

#include <fcntl.h>

namespace lorvane {
namespace {

QString folderOf(const QString &path) { return QFileInfo(path).path(); }

/// A file that is open until this goes, or until close() says whether closing went well.
class OpenFile {
public:
    OpenFile(int file, SystemCalls &calls) : file_(file), calls_(calls) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() {
        if (isOpen())
            close();
    }

    bool isOpen() const { return file_ >= 0; }

    bool write(QByteArrayView bytes) {
        while (!bytes.isEmpty()) {
            const ssize_t written =
                calls_.write(file_, bytes.data(), static_cast<std::size_t>(bytes.size()));
            if (written < 0 && errno == EINTR)
                continue;
            if (written == 0)
                errno = ENOSPC; // a device that takes nothing more
            if (written <= 0)
                return false;
            bytes = bytes.sliced(written);
        }
        return true;
    }

    bool sync() {
        int result = 0;
        do {
            result = calls_.fsync(file_);
        } while (result < 0 && errno == EINTR);
        return result == 0;
    }

    bool close() { return calls_.close(std::exchange(file_, -1)) == 0; }

private:
    int file_;
    SystemCalls &calls_;
};

/// Makes the names in a folder as durable as what they stand for.
void syncFolder(const QString &path, SystemCalls &calls) {
    OpenFile folder(
        calls.open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), calls);
    // Some file systems know no syncing of a folder, and say so by EINVAL.
    if (!folder.isOpen() || (!folder.sync() && errno != EINVAL))
        throw FileError(path, QStringLiteral("could not be synced"), errno);
}

/// Where the bytes of `path` are: at the end of its symbolic links, if it is one.
QString linkTarget(QString path, SystemCalls &calls) {
    constexpr int mostLinks = 40; // as many as the kernel follows
    std::array<char, PATH_MAX> buffer;
    for (int links = 0; links <= mostLinks; ++links) {
        const ssize_t size =
            calls.readlink(QFile::encodeName(path).constData(), buffer.data(), buffer.size());
        if (size < 0 && (errno == EINVAL || errno == ENOENT))
            return path; // no link, or nothing there yet
        if (size < 0)
            throw FileError(path, QStringLiteral("could not be found"), errno);
        const QString target = QFile::decodeName(QByteArray(buffer.data(), size));
        path = QFileInfo(target).isAbsolute() ? target : folderOf(path) + u'/' + target;
    }
    throw FileError(path, QStringLiteral("could not be found"), ELOOP);
}

} // namespace

void createFolder(const QString &path, SystemCalls &calls) {
    const auto make = [&] { return calls.mkdir(QFile::encodeName(path).constData(), 0700); };
    int result = make();
    if (result < 0 && errno == ENOENT && folderOf(path) != path) {
        createFolder(folderOf(path), calls);
        result = make();
    }
    if (result == 0) {
        syncFolder(folderOf(path), calls);
        return;
    }
    const int code = errno;
    if (code != EEXIST || !QFileInfo(path).isDir())
        throw FileError(path, QStringLiteral("could not be created"), code);
}

void replaceFile(const QString &path, const std::function<void(const ByteSink &)> &writeContents,
                 SystemCalls &calls) {
    const QString target = linkTarget(path, calls);
    const QByteArray targetName = QFile::encodeName(target);
    QByteArray temporaryName = targetName + ".XXXXXX";
    const auto failure = [&path](const char16_t *what) {
        return FileError(path, QString::fromUtf16(what), errno);
    };

    OpenFile temporary(calls.mkostemp(temporaryName.data(), O_CLOEXEC), calls);
    if (!temporary.isOpen())
        throw failure(u"could not be written");
    try {
        writeContents([&](QByteArrayView bytes) {
            if (!temporary.write(bytes))
                throw failure(u"could not be written");
        });
        if (!temporary.sync())
            throw failure(u"could not be synced");
        if (!temporary.close())
            throw failure(u"could not be written");
        if (calls.rename(temporaryName.constData(), targetName.constData()) < 0)
            throw failure(u"could not be replaced");
    } catch (const LocalizedError &) {
        calls.unlink(temporaryName.constData());
        throw;
    }
    if (calls.chmod(targetName.constData(), 0600) < 0)
        throw failure(u"could not be made private");
    syncFolder(folderOf(target), calls);
}

} // namespace lorvane
