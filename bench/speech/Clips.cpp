#include "Clips.h"

#include "Core/LocalizedError.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace lorvane {

QJsonArray Clip::words() const {
    QFile file(alignment);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).array()
                                          : QJsonArray();
}

std::vector<Clip> readClips(const QDir &folder, const QString &listName) {
    QFile list(folder.filePath(listName));
    if (!list.open(QIODevice::ReadOnly))
        throw LocalizedError(u"There is no %1 in %2"_qs.arg(listName, folder.path()));
    std::vector<Clip> clips;
    list.readLine();
    while (!list.atEnd()) {
        const QStringList columns = QString::fromUtf8(list.readLine()).trimmed().split(u'\t');
        const QString name = QFileInfo(columns[0]).completeBaseName();
        clips.push_back({folder.filePath(columns[0]), columns.value(2),
                         columns.value(3).split(u"; "_qs, Qt::SkipEmptyParts),
                         folder.filePath(u"align/%1.json"_qs.arg(name))});
    }
    return clips;
}

} // namespace lorvane
