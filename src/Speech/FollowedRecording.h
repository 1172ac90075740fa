#pragma once

#include "Speech/FileAnalysis.h"
#include "Speech/RecognitionWorker.h"

namespace lorvane {

/// A recording that is analysed while it is still being written, in the time that is left, so that
/// little of it is left to be done when it is finished.
class FollowedRecording : public std::enable_shared_from_this<FollowedRecording> {
public:
    /// `audioFile` and `worker` outlive this.
    FollowedRecording(AudioFile &audioFile, RecognitionWorker &worker,
                      std::shared_ptr<KeptEngine> engine, QString path,
                      QStringList contextualStrings);

    /// Goes on until it is cancelled, its analysis is taken, or it fails.
    void start() { schedule(worker_.now()); }

    /// Any thread.
    void cancel() { cancellation_.request_stop(); }

    /// Whether an analysis with these would be the same. Any thread.
    bool isOf(const QString &path, const KeptEngine &engine,
              const QStringList &contextualStrings) const;

    /// What has been done of the analysis, if anything: the caller goes on with it. On the worker.
    std::unique_ptr<FileAnalysis> take();

private:
    void schedule(RecognitionWorker::TimePoint time);
    void step(std::stop_source &stop);

    AudioFile &audioFile_;
    RecognitionWorker &worker_;
    const std::shared_ptr<KeptEngine> engine_;
    const QString path_;
    const QStringList contextualStrings_;
    std::stop_source cancellation_;
    std::unique_ptr<FileAnalysis> analysis_;
};

} // namespace lorvane
