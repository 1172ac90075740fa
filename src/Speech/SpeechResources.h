#pragma once

#include "Platform/AudioFile.h"
#include "Speech/FollowedRecording.h"
#include "Speech/KeptEngine.h"

#include <map>

namespace lorvane {

/// What the recognisers and analysers of a program share: a thread for live audio and one for
/// files, which take turns, and the models.
class SpeechResources {
public:
    /// The models of one language.
    struct Language {
        std::shared_ptr<KeptEngine> live;
        std::shared_ptr<KeptEngine> file;
        bool hasFileModel = false; ///< one that is good enough for whole files
    };

    /// `audioFile` outlives this.
    SpeechResources(AudioFile &audioFile, QString modelsFolder);

    /// The models for a locale such as "en-AU", or null when there are none. Main thread only.
    const Language *language(const QString &localeIdentifier);

    AudioFile &audioFile;

    /// The recording that is analysed ahead of its end, if any. Main thread only.
    std::weak_ptr<FollowedRecording> followed;

private:
    const QString modelsFolder_;
    Turns turns_;
    std::unique_ptr<OnnxRuntime> runtime_;
    std::map<QString, Language> languages_;

public:
    // Last, so that they end before what they work with.
    RecognitionWorker liveWorker;
    RecognitionWorker fileWorker;
};

} // namespace lorvane
