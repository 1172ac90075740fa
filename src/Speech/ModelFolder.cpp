#include "Speech/ModelFolder.h"

#include "Core/LocalizedError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace lorvane {

namespace {

QJsonObject readManifest(const QDir &folder) {
    QFile file(folder.filePath(u"manifest.json"_qs));
    if (!file.open(QIODevice::ReadOnly))
        throw LocalizedError(u"There is no speech model in “%1”."_qs.arg(folder.path()));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    const QJsonObject manifest = document.object();
    if (manifest[u"engine"].toString() != u"moonshine")
        throw LocalizedError(u"“%1” is no manifest of a speech model."_qs.arg(file.fileName()));
    return manifest;
}

void checkFiles(const QDir &folder, const QJsonObject &files) {
    for (auto file = files.begin(); file != files.end(); ++file) {
        const qint64 size = file->toObject()[u"bytes"].toInteger(-1);
        const QFileInfo info(folder.filePath(file.key()));
        if (!info.isFile() || info.size() != size) {
            throw LocalizedError(
                u"The speech model file “%1” is missing or damaged."_qs.arg(info.filePath()));
        }
    }
}

} // namespace

ModelFolder ModelFolder::read(const QString &path) {
    const QDir folder(path);
    const QJsonObject manifest = readManifest(folder);
    checkFiles(folder, manifest[u"files"].toObject());

    // Only what was checked is used.
    const auto checkedFile = [&, checked = manifest[u"files"].toObject()](const QJsonValue &name) {
        if (!checked.contains(name.toString())) {
            throw LocalizedError(
                u"“%1” uses a file that it doesn’t list: “%2”."_qs.arg(path, name.toString()));
        }
        return folder.filePath(name.toString());
    };

    ModelFolder model;
    const QJsonArray languages = manifest[u"languages"].toArray();
    for (const auto &language : languages)
        model.languages.append(language.toString());
    model.tokens = checkedFile(manifest[u"tokens"]);
    const QJsonObject sizes = manifest[u"sizes"].toObject();
    if (sizes.isEmpty())
        throw LocalizedError(u"“%1” names no speech model."_qs.arg(path));
    for (auto size = sizes.begin(); size != sizes.end(); ++size) {
        const QJsonObject files = size->toObject();
        const QJsonObject alignment = files[u"alignment"].toObject();
        model.sizes[size.key()] = {checkedFile(files[u"encoder"]), checkedFile(files[u"decoder"]),
                                   alignment[u"head"].toInt(), alignment[u"offset"].toDouble()};
    }
    return model;
}

std::optional<ModelFolder> ModelFolder::find(const QString &modelsFolder, const QString &language) {
    const QDir models(modelsFolder);
    std::optional<ModelFolder> best;
    for (const QString &name : models.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        try {
            const ModelFolder model = read(models.filePath(name));
            if (model.languages.contains(language) && (!best || model.rank() > best->rank()))
                best = model;
        } catch (const LocalizedError &) {
            // Not a model of ours, or a broken one: another may serve.
        }
    }
    return best;
}

int ModelFolder::rank() const {
    return (sizes.contains(fileModel) ? 2 : 0) + (sizes.contains(liveModel) ? 1 : 0);
}

} // namespace lorvane
