#include "Speech/SpeechListener.h"

#include <gtest/gtest.h>

namespace lorvane {

SpeechHandler SpeechListener::handler() {
    // Goes when the last copy of the handler goes.
    struct Presence {
        std::shared_ptr<State> state;
        ~Presence() {
            const std::lock_guard lock(state->mutex);
            state->heard.handlerIsGone = true;
            state->changed.notify_all();
        }
    };
    const auto presence = std::make_shared<Presence>();
    presence->state = state_;
    return
        [presence](const std::optional<SpeechResult> &result, const std::optional<QString> &error) {
            State &state = *presence->state;
            const std::lock_guard lock(state.mutex);
            if (result)
                state.heard.results.push_back(*result);
            if (error)
                state.heard.error = error;
            state.changed.notify_all();
        };
}

namespace {

/// Ends the recogniser before the process begins to end: the runtime's own globals go before ours.
struct RealSpeech : testing::Environment {
    SndfileAudioFile audioFile;
    std::unique_ptr<OnDeviceSpeech> speech;
    std::shared_ptr<SpeechRecognizer> english;

    void TearDown() override {
        english.reset();
        speech.reset();
    }
};

RealSpeech &real() {
    static RealSpeech &real =
        static_cast<RealSpeech &>(*testing::AddGlobalTestEnvironment(new RealSpeech));
    return real;
}

[[maybe_unused]] const RealSpeech &registered = real();

} // namespace

OnDeviceSpeech &realSpeech() {
    if (!real().speech)
        real().speech =
            std::make_unique<OnDeviceSpeech>(real().audioFile, QStringLiteral(LORVANE_MODELS));
    return *real().speech;
}

SpeechRecognizer &englishRecognizer() {
    if (!real().english)
        real().english = realSpeech().makeRecognizer(u"en-AU"_qs);
    if (!real().english)
        throw std::runtime_error("there is no recogniser: run scripts/fetch-speech");
    return *real().english;
}

QString writeAudio(const std::vector<float> &samples, double sampleRate, int channelCount) {
    static QTemporaryDir folder;
    static int count = 0;
    const QString path = folder.filePath(u"%1.caf"_qs.arg(++count));
    std::vector<float> frames;
    frames.reserve(samples.size() * static_cast<std::size_t>(channelCount));
    for (const float sample : samples)
        frames.insert(frames.end(), static_cast<std::size_t>(channelCount), sample);
    SndfileAudioFile()
        .openForWriting(path, {sampleRate, channelCount})
        ->write({frames.data(), static_cast<qsizetype>(samples.size()), channelCount});
    return path;
}

SpeechListener::Heard recognizeSamples(const std::vector<float> &samples, double sampleRate,
                                       int channelCount) {
    SpeechListener listener;
    const auto task = englishRecognizer().recognize(writeAudio(samples, sampleRate, channelCount),
                                                    SpeechOptions(), listener.handler());
    listener.waitForEnd();
    return listener.heard();
}

} // namespace lorvane
