#include "Speech/FileAnalyzer.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"

namespace lorvane {

namespace {

/// Tells the end when the job goes, whether it has run or was forgotten.
struct Ending {
    explicit Ending(SpeechAnalyzer::OnEnd handler) : onEnd(std::move(handler)) {}
    Ending(const Ending &) = delete;
    Ending &operator=(const Ending &) = delete;
    ~Ending() { onEnd(error); }

    const SpeechAnalyzer::OnEnd onEnd;
    std::optional<QString> error;
};

} // namespace

FileAnalyzer::FileAnalyzer(std::shared_ptr<SpeechResources> resources,
                           std::shared_ptr<KeptEngine> engine, QStringList contextualStrings)
    : resources_(std::move(resources)),
      engine_(std::move(engine)),
      contextualStrings_(std::move(contextualStrings)) {}

void FileAnalyzer::start(const QString &path, OnResult onResult, OnEnd onEnd) {
    followed_ = resources_->followed.lock();
    if (followed_ && !followed_->isOf(path, *engine_, contextualStrings_))
        followed_.reset();
    const auto ending = std::make_shared<Ending>(std::move(onEnd));
    resources_->fileWorker.postAfterBackground(
        [&audioFile = resources_->audioFile, engine = engine_, strings = contextualStrings_, path,
         followed = followed_, onResult = std::move(onResult), ending,
         cancelled = cancellation_.get_token()](std::stop_source &source) {
            const std::stop_callback link(cancelled, [&source] { source.request_stop(); });
            const std::stop_token stop = source.get_token();
            try {
                const std::unique_ptr<AudioFileReader> file = audioFile.openForReading(path);
                std::unique_ptr<FileAnalysis> analysis = followed ? followed->take() : nullptr;
                if (!analysis || !analysis->isOf(*file, stop))
                    analysis = std::make_unique<FileAnalysis>(file->format(), engine, strings);
                analysis->finish(*file, onResult, stop);
            } catch (const Abandoned &) {
                // Nobody waits for it any longer.
            } catch (const std::exception &error) {
                ending->error = QString::fromUtf8(error.what());
            }
        });
}

void FileAnalyzer::cancelAndFinishNow() {
    cancellation_.request_stop();
    if (followed_)
        followed_->cancel(); // the job waits for it
}

} // namespace lorvane
