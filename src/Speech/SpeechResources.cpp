#include "Speech/SpeechResources.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <thread>

namespace lorvane {

namespace {

QString languageOf(const QString &localeIdentifier) {
    return localeIdentifier.section(u'-', 0, 0).section(u'_', 0, 0).toLower();
}

/// So many threads of the recogniser compute at a time: one core is left to everything else.
int threadCount() {
    return static_cast<int>(std::max(2U, std::thread::hardware_concurrency())) - 1;
}

} // namespace

SpeechResources::SpeechResources(AudioFile &file, QString modelsFolder)
    : audioFile(file),
      modelsFolder_(std::move(modelsFolder)),
      turns_(threadCount()),
      liveWorker(turns_, Urgency::preview),
      fileWorker(turns_, Urgency::ahead) {}

const SpeechResources::Language *SpeechResources::language(const QString &localeIdentifier) {
    const QString name = languageOf(localeIdentifier);
    if (const auto known = languages_.find(name); known != languages_.end())
        return &known->second;
    const std::optional<ModelFolder> folder = ModelFolder::find(modelsFolder_, name);
    const QString voiceActivity = QDir(modelsFolder_).filePath(u"vad/silero.onnx"_qs);
    if (!folder || !QFileInfo(voiceActivity).isFile())
        return nullptr;
    if (!runtime_)
        runtime_ = std::make_unique<OnnxRuntime>(threadCount());
    // A language may have models of one size only, which then serves for everything.
    const auto engine = [&](const QString &preferred, RecognitionWorker &worker) {
        const QString size =
            folder->sizes.contains(preferred) ? preferred : folder->sizes.keys().first();
        return std::make_shared<KeptEngine>(
            std::make_unique<SpeechEngine>(*runtime_, *folder, voiceActivity), size, worker);
    };
    return &languages_
                .emplace(name,
                         Language{engine(liveModel, liveWorker), engine(fileModel, fileWorker),
                                  folder->sizes.contains(fileModel)})
                .first->second;
}

} // namespace lorvane
