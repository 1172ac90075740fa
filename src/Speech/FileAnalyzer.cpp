#include "Speech/FileAnalyzer.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"

namespace lorvane {

/// Hands on what an analysis gives until its end is told: once, at the latest when its job goes,
/// whether that has run or was forgotten.
class FileAnalyzer::Listener {
public:
    Listener(OnResult onResult, OnEnd onEnd)
        : onResult_(std::move(onResult)), onEnd_(std::move(onEnd)) {}
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener() { end({}); }

    void give(const SpeechAnalysisResult &result) {
        const std::lock_guard lock(mutex_);
        if (onEnd_)
            onResult_(result);
    }
    void end(const std::optional<QString> &error) {
        std::unique_lock lock(mutex_);
        const OnEnd onEnd = std::exchange(onEnd_, nullptr);
        lock.unlock(); // it may end the analyser
        if (onEnd)
            onEnd(error);
    }

private:
    std::mutex mutex_; ///< held while a result is handed on, so that none follows the end
    const OnResult onResult_;
    OnEnd onEnd_;
};

FileAnalyzer::FileAnalyzer(std::shared_ptr<SpeechResources> resources,
                           std::shared_ptr<KeptEngine> engine, QStringList contextualStrings)
    : resources_(std::move(resources)),
      engine_(std::move(engine)),
      contextualStrings_(std::move(contextualStrings)) {}

void FileAnalyzer::start(const QString &path, OnResult onResult, OnEnd onEnd) {
    followed_ = resources_->followed.lock();
    if (followed_ && !followed_->isOf(path, *engine_, contextualStrings_))
        followed_.reset();
    const auto listener = std::make_shared<Listener>(std::move(onResult), std::move(onEnd));
    listener_ = listener;
    resources_->fileWorker.postAfterBackground(
        [&audioFile = resources_->audioFile, engine = engine_, strings = contextualStrings_, path,
         followed = followed_, listener,
         cancelled = cancellation_.get_token()](std::stop_source &source) {
            const std::stop_callback link(cancelled, [&source] { source.request_stop(); });
            const std::stop_token stop = source.get_token();
            try {
                const std::unique_ptr<AudioFileReader> file = audioFile.openForReading(path);
                std::unique_ptr<FileAnalysis> analysis = followed ? followed->take() : nullptr;
                if (!analysis || !analysis->isOf(*file, stop))
                    analysis = std::make_unique<FileAnalysis>(file->format(), engine, strings);
                analysis->finish(
                    *file,
                    [&listener](const SpeechAnalysisResult &result) { listener->give(result); },
                    stop);
            } catch (const Abandoned &) {
                // Nobody waits for it any longer.
            } catch (const std::exception &error) {
                listener->end(QString::fromUtf8(error.what()));
            }
        });
}

void FileAnalyzer::cancelAndFinishNow() {
    cancellation_.request_stop();
    if (followed_)
        followed_->cancel(); // the job waits for it
    // Now, since a model that is being loaded can't be stopped.
    if (const auto listener = listener_.lock())
        listener->end({});
}

} // namespace lorvane
