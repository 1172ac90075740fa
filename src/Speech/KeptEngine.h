#pragma once

#include "Speech/RecognitionWorker.h"
#include "Speech/SpeechEngine.h"

namespace lorvane {

/// The engine of one worker and the size of model that it uses there. What recognition has freed is
/// given back to the system soon after it, and the memory of a model that has not been used for a
/// while too; the next use loads it again.
class KeptEngine : public std::enable_shared_from_this<KeptEngine> {
public:
    static constexpr std::chrono::seconds shortRest{5};
    static constexpr std::chrono::minutes longestIdle{10};

    /// `worker` outlives this.
    KeptEngine(std::unique_ptr<SpeechEngine> engine, QString size, RecognitionWorker &worker);

    const QString &size() const { return size_; }

    /// The engine for a job of the worker's, on its thread alone.
    SpeechEngine &use();

    /// Gives back now what recognition has freed. Any thread.
    void trim();

    /// Loads the model when the worker has nothing else to do. Any thread.
    void loadInBackground();

private:
    /// What is done once the engine has not been used for some time.
    struct Rest {
        std::chrono::seconds length;
        void (KeptEngine::*act)();
        bool isAwaited = false;
    };
    void await(Rest &rest);
    void endRest(Rest &rest);
    void unload();

    const std::unique_ptr<SpeechEngine> engine_;
    const QString size_;
    RecognitionWorker &worker_;
    RecognitionWorker::TimePoint lastUse_;
    Rest rests_[2] = {{shortRest, &KeptEngine::trim}, {longestIdle, &KeptEngine::unload}};
};

} // namespace lorvane
