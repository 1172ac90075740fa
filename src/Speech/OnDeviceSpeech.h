#pragma once

#include "Platform/AudioFile.h"
#include "Platform/Speech.h"

namespace lorvane {

class SpeechResources;

/// The recogniser that runs on this machine, with models in a folder: finished files are recognised
/// with the larger model, live audio with the smaller one.
class OnDeviceSpeech : public Speech {
public:
    /// `modelsFolder` holds a folder for each language and "vad"; `audioFile` outlives this.
    OnDeviceSpeech(AudioFile &audioFile, QString modelsFolder);
    ~OnDeviceSpeech() override;

    /// Where the program has its models: beside its executable, or where it is installed.
    static QString installedModelsFolder();

    /// Loads the models of a locale in the background, so that the first dictation needn't wait.
    void preload(const QString &localeIdentifier = QStringLiteral("en-US"));

    std::shared_ptr<SpeechRecognizer> makeRecognizer(const QString &localeIdentifier) override;

    std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &localeIdentifier,
                                                 const QStringList &contextualStrings) override;

    std::unique_ptr<SpeechTask> followRecording(const QString &path,
                                                const QString &localeIdentifier,
                                                const QStringList &contextualStrings) override;

private:
    class Recognizer;

    std::shared_ptr<SpeechResources> resources_;
};

} // namespace lorvane
