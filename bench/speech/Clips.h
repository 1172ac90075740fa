#pragma once

#include <QDir>
#include <QJsonArray>
#include <QStringList>

#include <vector>

namespace lorvane {

/// A recording of a folder.
struct Clip {
    QString path;
    QString transcript;       ///< empty where nobody speaks
    QStringList phrases;      ///< to listen for
    QString alignment;        ///< the path of its words and their times, if there is one
    QJsonArray words() const; ///< those words
};

/// The recordings that a list in `folder` names: its columns are file, seconds, transcript and
/// phrases (between them "; "). Those with the words and their times have an "align/NAME.json".
/// Throws LocalizedError.
std::vector<Clip> readClips(const QDir &folder, const QString &listName);

} // namespace lorvane
