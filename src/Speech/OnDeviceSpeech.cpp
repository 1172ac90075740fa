#include "Speech/OnDeviceSpeech.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"
#include "Speech/FileAnalysis.h"
#include "Speech/FileSamples.h"
#include "Speech/LiveRecognition.h"
#include "Speech/ModelFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <thread>

namespace lorvane {

namespace {

QString languageOf(const QString &localeIdentifier) {
    return localeIdentifier.section(u'-', 0, 0).section(u'_', 0, 0).toLower();
}

int threadCount() {
    return static_cast<int>(std::max(2U, std::thread::hardware_concurrency())) - 1;
}

class Task : public SpeechTask {
public:
    explicit Task(std::stop_source cancellation) : cancellation_(std::move(cancellation)) {}
    ~Task() override { cancellation_.request_stop(); }
    void cancel() override { cancellation_.request_stop(); }

private:
    std::stop_source cancellation_;
};

} // namespace

/// What all recognisers share. The worker comes last, so that it ends before what it works with.
class OnDeviceSpeech::Shared {
public:
    Shared(AudioFile &file, QString folder) : audioFile(file), modelsFolder_(std::move(folder)) {}

    /// The engine for a language, or none. Main thread only.
    std::shared_ptr<SpeechEngine> engine(const QString &language) {
        std::shared_ptr<SpeechEngine> &engine = engines_[language];
        if (engine)
            return engine;
        const std::optional<ModelFolder> folder = ModelFolder::find(modelsFolder_, language);
        const QString voiceActivity = QDir(modelsFolder_).filePath(u"vad/silero.onnx"_qs);
        if (!folder || !QFileInfo(voiceActivity).isFile())
            return nullptr;
        if (!runtime_)
            runtime_ = std::make_unique<OnnxRuntime>(threadCount());
        engine = std::make_shared<SpeechEngine>(*runtime_, *folder, voiceActivity);
        return engine;
    }

    AudioFile &audioFile;

private:
    QString modelsFolder_;
    std::unique_ptr<OnnxRuntime> runtime_;
    std::map<QString, std::shared_ptr<SpeechEngine>> engines_;

public:
    RecognitionWorker worker;
};

class OnDeviceSpeech::Recognizer : public SpeechRecognizer {
public:
    Recognizer(std::shared_ptr<Shared> shared, std::shared_ptr<SpeechEngine> engine,
               QString localeIdentifier)
        : shared_(std::move(shared)),
          engine_(std::move(engine)),
          localeIdentifier_(std::move(localeIdentifier)) {}

    QString localeIdentifier() const override { return localeIdentifier_; }
    bool isAvailable() const override { return true; }
    bool supportsOnDeviceRecognition() const override { return true; }

    std::shared_ptr<SpeechBufferRequest> makeBufferRequest(const AudioFormat &format,
                                                           const SpeechOptions &options) override {
        return std::make_shared<LiveRequest>(format, options);
    }

    std::unique_ptr<SpeechTask> recognize(std::shared_ptr<SpeechBufferRequest> request,
                                          SpeechHandler handler) override {
        const auto live = std::static_pointer_cast<LiveRequest>(std::move(request));
        std::stop_source cancellation;
        std::make_shared<LiveRecognition>(live, engine_, shared_->worker, cancellation.get_token(),
                                          std::move(handler))
            ->start();
        return std::make_unique<Task>(std::move(cancellation));
    }

    std::unique_ptr<SpeechTask> recognize(const QString &path, const SpeechOptions &options,
                                          SpeechHandler handler) override {
        std::stop_source cancellation;
        shared_->worker.post([engine = engine_, &audioFile = shared_->audioFile, path, options,
                              cancelled = cancellation.get_token(),
                              handler = std::move(handler)](std::stop_source &stop) {
            const std::stop_callback link(cancelled, [&stop] { stop.request_stop(); });
            try {
                const std::vector<float> samples = readSamples(audioFile, path, stop.get_token());
                const QList<TimedWord> words =
                    engine->recognize(samples, fileModel, options, stop.get_token());
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
    std::shared_ptr<Shared> shared_;
    std::shared_ptr<SpeechEngine> engine_;
    QString localeIdentifier_;
};

class OnDeviceSpeech::Analyzer : public SpeechAnalyzer {
public:
    Analyzer(std::shared_ptr<Shared> shared, std::shared_ptr<SpeechEngine> engine,
             QStringList contextualStrings)
        : shared_(std::move(shared)),
          engine_(std::move(engine)),
          contextualStrings_(std::move(contextualStrings)) {}
    ~Analyzer() override { cancellation_.request_stop(); }

    void start(const QString &path, OnResult onResult, OnEnd onEnd) override {
        const auto ending = std::make_shared<Ending>(std::move(onEnd));
        shared_->worker.post([engine = engine_, &audioFile = shared_->audioFile, path,
                              strings = contextualStrings_, onResult = std::move(onResult), ending,
                              cancelled = cancellation_.get_token()](std::stop_source &stop) {
            const std::stop_callback link(cancelled, [&stop] { stop.request_stop(); });
            try {
                const std::unique_ptr<AudioFileReader> file = audioFile.openForReading(path);
                FileAnalysis analysis(file->format(), *engine, strings);
                analysis.finish(*file, onResult, stop.get_token());
            } catch (const Abandoned &) {
                // Nobody waits for it any longer.
            } catch (const std::exception &error) {
                ending->error = QString::fromUtf8(error.what());
            }
        });
    }

    void cancelAndFinishNow() override { cancellation_.request_stop(); }

private:
    /// Tells the end when the job goes, whether it has run or was forgotten.
    struct Ending {
        explicit Ending(OnEnd handler) : onEnd(std::move(handler)) {}
        ~Ending() { onEnd(error); }

        OnEnd onEnd;
        std::optional<QString> error;
    };

    std::shared_ptr<Shared> shared_;
    std::shared_ptr<SpeechEngine> engine_;
    QStringList contextualStrings_;
    std::stop_source cancellation_;
};

OnDeviceSpeech::OnDeviceSpeech(AudioFile &audioFile, QString modelsFolder)
    : shared_(std::make_shared<Shared>(audioFile, std::move(modelsFolder))) {}

OnDeviceSpeech::~OnDeviceSpeech() = default;

QString OnDeviceSpeech::installedModelsFolder() {
    const QDir executable(QCoreApplication::applicationDirPath());
    const QString beside = executable.filePath(u"models"_qs);
    if (QFileInfo(beside).isDir())
        return beside;
    return QDir::cleanPath(executable.filePath(u"../share/lorvane/models"_qs));
}

void OnDeviceSpeech::preload(const QString &localeIdentifier) {
    const std::shared_ptr<SpeechEngine> engine = shared_->engine(languageOf(localeIdentifier));
    if (!engine)
        return;
    for (const QString &size : {liveModel, fileModel}) {
        shared_->worker.post([engine, size](std::stop_source &) {
            try {
                engine->load(size);
            } catch (const std::exception &) {
                // The first recognition tries again, and tells.
            }
        });
    }
}

std::shared_ptr<SpeechRecognizer> OnDeviceSpeech::makeRecognizer(const QString &localeIdentifier) {
    const std::shared_ptr<SpeechEngine> engine = shared_->engine(languageOf(localeIdentifier));
    if (!engine)
        return nullptr;
    return std::make_shared<Recognizer>(shared_, engine, localeIdentifier);
}

std::unique_ptr<SpeechAnalyzer> OnDeviceSpeech::makeAnalyzer(const QString &localeIdentifier,
                                                             const QStringList &contextualStrings) {
    const std::shared_ptr<SpeechEngine> engine = shared_->engine(languageOf(localeIdentifier));
    if (!engine)
        return nullptr;
    return std::make_unique<Analyzer>(shared_, engine, contextualStrings);
}

} // namespace lorvane
