#pragma once

#include "Speech/SpeechResources.h"

namespace lorvane {

/// Analyses one file on the worker for files. It goes on from what has been done of it already when
/// the file was followed while it was being written.
class FileAnalyzer : public SpeechAnalyzer {
public:
    FileAnalyzer(std::shared_ptr<SpeechResources> resources, std::shared_ptr<KeptEngine> engine,
                 QStringList contextualStrings);
    ~FileAnalyzer() override { cancelAndFinishNow(); }

    void start(const QString &path, OnResult onResult, OnEnd onEnd) override;
    void cancelAndFinishNow() override;

private:
    class Listener;

    const std::shared_ptr<SpeechResources> resources_;
    const std::shared_ptr<KeptEngine> engine_;
    const QStringList contextualStrings_;
    std::stop_source cancellation_;
    std::shared_ptr<FollowedRecording> followed_;
    std::weak_ptr<Listener> listener_; ///< lives as long as the job
};

} // namespace lorvane
