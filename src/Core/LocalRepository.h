#pragma once

#include "Core/LocalizedError.h"
#include "Core/Models.h"
#include "Core/SystemCalls.h"

#include <QString>

namespace lorvane {

/// The one file of the library. It knows a location and nothing else: no cache, no open file, no
/// state between calls. All calls block until the file work is done, and throw a LocalizedError.
class LocalRepository {
public:
    /// A library that is well-formed but of a schema that this program doesn't know.
    class RepositoryError : public LocalizedError {
    public:
        static RepositoryError unsupportedVersion(qint64 version) {
            return RepositoryError(version);
        }
        qint64 version() const { return version_; }

    private:
        explicit RepositoryError(qint64 version);
        qint64 version_;
    };

    /// `fileURL` is a path. `calls`, which must outlive the repository, is where tests let saving
    /// fail.
    explicit LocalRepository(QString fileURL, SystemCalls &calls = SystemCalls::real());

    /// The repository on "Lorvane/library.json" in the application support folder. Only the latter
    /// is created here. Throws FileError.
    static LocalRepository applicationDefault();

    const QString &fileURL() const { return fileURL_; }

    /// The library in the file, or an empty one when there is no file. Writes nothing, ever. Throws
    /// FileError when the file can't be read, DecodingError when it isn't a library, and
    /// RepositoryError.
    AppSnapshot load() const;

    /// Replaces the file by the snapshot, in one durable step, readable by its owner only. Throws
    /// EncodingError or FileError; the old file then stands, unless the failure came after the
    /// replacement itself (in setting the permissions, or syncing the folder).
    void save(const AppSnapshot &snapshot) const;

private:
    QString fileURL_;
    SystemCalls *calls_;
};

} // namespace lorvane
