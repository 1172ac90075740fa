#pragma once

#include "Platform/AudioFile.h"
#include "Platform/Speech.h"

namespace lorvane {

/// The recogniser that runs on this machine: models in a folder, one thread that works with them.
/// Finished files are recognised with the larger model, live audio with the smaller one.
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

private:
    class Shared;
    class Recognizer;
    class Analyzer;

    std::shared_ptr<Shared> shared_;
};

} // namespace lorvane
