#include "Speech/FollowedRecording.h"

#include "Speech/Abandoned.h"

namespace lorvane {

namespace {
constexpr std::chrono::seconds interval(1);
}

FollowedRecording::FollowedRecording(AudioFile &audioFile, RecognitionWorker &worker,
                                     std::shared_ptr<KeptEngine> engine, QString path,
                                     QStringList contextualStrings)
    : audioFile_(audioFile),
      worker_(worker),
      engine_(std::move(engine)),
      path_(std::move(path)),
      contextualStrings_(std::move(contextualStrings)) {}

bool FollowedRecording::isOf(const QString &path, const KeptEngine &engine,
                             const QStringList &contextualStrings) const {
    return path_ == path && engine_.get() == &engine && contextualStrings_ == contextualStrings;
}

std::unique_ptr<FileAnalysis> FollowedRecording::take() {
    if (cancellation_.stop_requested())
        return nullptr;
    cancel();
    return std::move(analysis_);
}

void FollowedRecording::schedule(RecognitionWorker::TimePoint time) {
    worker_.postInBackground(
        time, [self = shared_from_this()](std::stop_source &stop) { self->step(stop); });
}

void FollowedRecording::step(std::stop_source &stop) {
    const std::stop_callback link(cancellation_.get_token(), [&stop] { stop.request_stop(); });
    try {
        // Opened anew each time: a reader knows the length of its file from when it was opened.
        const std::unique_ptr<AudioFileReader> file = audioFile_.openForReading(path_);
        if (!analysis_)
            analysis_ = std::make_unique<FileAnalysis>(file->format(), engine_, contextualStrings_);
        analysis_->advance(*file, stop.get_token());
    } catch (const Abandoned &) {
        // A file has to be recognised first, if nobody has cancelled.
    } catch (const std::exception &) {
        cancel(); // the analysis of the finished file will tell
    }
    if (cancellation_.stop_requested())
        analysis_.reset();
    else
        schedule(worker_.now() + interval);
}

} // namespace lorvane
