#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace lorvane {

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

    /// The first whole folder in `modelsFolder` that serves a language such as "en", or none.
    static std::optional<ModelFolder> find(const QString &modelsFolder, const QString &language);
};

} // namespace lorvane
