#include "Speech/OnDeviceSpeech.h"

#include "Speech/Abandoned.h"
#include "Speech/FileAnalyzer.h"
#include "Speech/FileSamples.h"
#include "Speech/LiveRecognition.h"
#include "Speech/SpeechResources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace lorvane {

namespace {

class Task : public SpeechTask {
public:
    explicit Task(std::stop_source cancellation) : cancellation_(std::move(cancellation)) {}
    ~Task() override { cancellation_.request_stop(); }
    void cancel() override { cancellation_.request_stop(); }

private:
    std::stop_source cancellation_;
};

/// Keeps a recording followed.
class FollowingTask : public SpeechTask {
public:
    FollowingTask(std::shared_ptr<SpeechResources> resources,
                  std::shared_ptr<FollowedRecording> recording)
        : resources_(std::move(resources)), recording_(std::move(recording)) {}
    ~FollowingTask() override { recording_->cancel(); }
    void cancel() override { recording_->cancel(); }

private:
    std::shared_ptr<SpeechResources> resources_; // outlives what works with it
    std::shared_ptr<FollowedRecording> recording_;
};

} // namespace

class OnDeviceSpeech::Recognizer : public SpeechRecognizer {
public:
    Recognizer(std::shared_ptr<SpeechResources> resources, SpeechResources::Language language,
               QString localeIdentifier)
        : resources_(std::move(resources)),
          language_(std::move(language)),
          localeIdentifier_(std::move(localeIdentifier)) {}

    QString localeIdentifier() const override { return localeIdentifier_; }
    bool isAvailable() const override { return true; }
    bool supportsOnDeviceRecognition() const override { return true; }

    // Searching for the user's phrases would make the live text late; the final one, which nobody
    // watches coming, is searched.
    std::shared_ptr<SpeechBufferRequest>
    makeBufferRequest(const AudioFormat &format, const SpeechOptions & /*options*/) override {
        return std::make_shared<LiveRequest>(format);
    }

    std::unique_ptr<SpeechTask> recognize(std::shared_ptr<SpeechBufferRequest> request,
                                          SpeechHandler handler) override {
        const auto live = std::static_pointer_cast<LiveRequest>(std::move(request));
        std::stop_source cancellation;
        std::make_shared<LiveRecognition>(live, language_.live, resources_->liveWorker,
                                          cancellation.get_token(), std::move(handler))
            ->start();
        return std::make_unique<Task>(std::move(cancellation));
    }

    std::unique_ptr<SpeechTask> recognize(const QString &path, const SpeechOptions &options,
                                          SpeechHandler handler) override {
        std::stop_source cancellation;
        resources_->fileWorker.post([engine = language_.file, &audioFile = resources_->audioFile,
                                     path, options, cancelled = cancellation.get_token(),
                                     handler = std::move(handler)](std::stop_source &stop) {
            const std::stop_callback link(cancelled, [&stop] { stop.request_stop(); });
            try {
                const std::vector<float> samples = readSamples(audioFile, path, stop.get_token());
                const QList<TimedWord> words =
                    engine->use().recognize(samples, engine->size(), options, stop.get_token());
                handler(makeResult(words, true), {});
            } catch (const Abandoned &) {
                // Nobody waits for it any longer.
            } catch (const std::exception &error) {
                handler({}, QString::fromUtf8(error.what()));
            }
        });
        return std::make_unique<Task>(std::move(cancellation));
    }

private:
    std::shared_ptr<SpeechResources> resources_;
    SpeechResources::Language language_;
    QString localeIdentifier_;
};

OnDeviceSpeech::OnDeviceSpeech(AudioFile &audioFile, QString modelsFolder)
    : resources_(std::make_shared<SpeechResources>(audioFile, std::move(modelsFolder))) {}

OnDeviceSpeech::~OnDeviceSpeech() = default;

QString OnDeviceSpeech::installedModelsFolder() {
    const QDir executable(QCoreApplication::applicationDirPath());
    const QString beside = executable.filePath(u"models"_qs);
    if (QFileInfo(beside).isDir())
        return beside;
    return QDir::cleanPath(executable.filePath(u"../share/lorvane/models"_qs));
}

void OnDeviceSpeech::preload(const QString &localeIdentifier) {
    if (const auto *language = resources_->language(localeIdentifier)) {
        language->live->loadInBackground();
        language->file->loadInBackground();
    }
}

std::shared_ptr<SpeechRecognizer> OnDeviceSpeech::makeRecognizer(const QString &localeIdentifier) {
    const auto *language = resources_->language(localeIdentifier);
    if (!language)
        return nullptr;
    // The models may have gone since they were used last.
    preload(localeIdentifier);
    return std::make_shared<Recognizer>(resources_, *language, localeIdentifier);
}

std::unique_ptr<SpeechAnalyzer> OnDeviceSpeech::makeAnalyzer(const QString &localeIdentifier,
                                                             const QStringList &contextualStrings) {
    const auto *language = resources_->language(localeIdentifier);
    if (!language || !language->hasFileModel)
        return nullptr;
    return std::make_unique<FileAnalyzer>(resources_, language->file, contextualStrings);
}

std::unique_ptr<SpeechTask> OnDeviceSpeech::followRecording(const QString &path,
                                                            const QString &localeIdentifier,
                                                            const QStringList &contextualStrings) {
    const auto *language = resources_->language(localeIdentifier);
    if (!language || !language->hasFileModel)
        return nullptr;
    const auto recording = std::make_shared<FollowedRecording>(
        resources_->audioFile, resources_->fileWorker, language->file, path, contextualStrings);
    recording->start();
    resources_->followed = recording;
    return std::make_unique<FollowingTask>(resources_, recording);
}

} // namespace lorvane
