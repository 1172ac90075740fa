#pragma once

#include "Speech/RecognitionWorker.h"
#include "Speech/SpeechEngine.h"

namespace lorvane {

/// The engine of one worker and the size of model that it uses there. The memory of a model that
/// has not been used for a while is given back; the next use loads it again.
class KeptEngine : public std::enable_shared_from_this<KeptEngine> {
public:
    static constexpr std::chrono::minutes longestIdle{10};

    /// `worker` outlives this.
    KeptEngine(std::unique_ptr<SpeechEngine> engine, QString size, RecognitionWorker &worker);

    const QString &size() const { return size_; }

    /// The engine for a job of the worker's, on its thread alone.
    SpeechEngine &use();

    /// Loads the model when the worker has nothing else to do. Any thread.
    void loadInBackground();

private:
    void watch(RecognitionWorker::TimePoint time);
    void unloadIfIdle();

    const std::unique_ptr<SpeechEngine> engine_;
    const QString size_;
    RecognitionWorker &worker_;
    RecognitionWorker::TimePoint lastUse_;
    bool isWatched_ = false;
};

} // namespace lorvane
