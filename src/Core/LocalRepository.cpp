#include "Core/LocalRepository.h"

#include "Core/ApplicationSupport.h"
#include "Core/DurableFile.h"
#include "Core/LibraryFormat.h"
#include "Core/WholeFile.h"

#include <QFileInfo>

namespace lorvane {

LocalRepository::RepositoryError::RepositoryError(qint64 version)
    : LocalizedError(QStringLiteral("Library version %1 is unsupported. Your existing library was "
                                    "left untouched.")
                         .arg(version)),
      version_(version) {}

LocalRepository::LocalRepository(QString fileURL, SystemCalls &calls)
    : fileURL_(std::move(fileURL)), calls_(&calls) {}

LocalRepository LocalRepository::applicationDefault() {
    return LocalRepository(applicationSupportDirectory() + QStringLiteral("/Lorvane/library.json"));
}

AppSnapshot LocalRepository::load() const {
    const std::optional<QByteArray> bytes = readFile(fileURL_);
    if (!bytes)
        return {};
    AppSnapshot snapshot = decodeLibrary(*bytes);
    if (snapshot.schemaVersion < 1 || snapshot.schemaVersion > AppSnapshot::currentSchemaVersion)
        throw RepositoryError::unsupportedVersion(snapshot.schemaVersion);
    snapshot.schemaVersion = AppSnapshot::currentSchemaVersion;
    snapshot.vocabulary = VocabularyEntry::consolidated(snapshot.vocabulary);
    return snapshot;
}

void LocalRepository::save(const AppSnapshot &snapshot) const {
    createFolder(QFileInfo(fileURL_).path(), *calls_);
    replaceFile(
        fileURL_, [&snapshot](const ByteSink &sink) { encodeLibrary(snapshot, sink); }, *calls_);
}

} // namespace lorvane
