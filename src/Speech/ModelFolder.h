#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace lorvane {

/// The sizes of the models: the smaller one keeps up with the voice, the larger one hears better.
inline const QString liveModel = QStringLiteral("tiny");
inline const QString fileModel = QStringLiteral("base");

/// One size of a speech model, as its manifest describes it.
struct ModelFiles {
    QString encoder; ///< paths
    QString decoder;
    int alignmentHead = 0;      ///< the head of the cross-attention that follows the voice
    double alignmentOffset = 0; ///< by how many seconds its frames come late
};

/// A folder that holds the models of a language and a manifest.json.
struct ModelFolder {
    QStringList languages; ///< such as "en"
    QString tokens;        ///< path of the token table
    QHash<QString, ModelFiles> sizes;

    /// Reads the manifest in `folder` and sees whether every file it names is there and has its
    /// size. Throws LocalizedError.
    static ModelFolder read(const QString &folder);

    /// The best whole folder in `modelsFolder` that serves a language such as "en", or none: one
    /// with the larger model before one without, the first by name among equals.
    static std::optional<ModelFolder> find(const QString &modelsFolder, const QString &language);

private:
    int rank() const;
};

} // namespace lorvane
