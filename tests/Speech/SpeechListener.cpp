#include "Speech/SpeechListener.h"

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

OnDeviceSpeech &realSpeech() {
    static SndfileAudioFile audioFile;
    static OnDeviceSpeech speech(audioFile, QStringLiteral(LORVANE_MODELS));
    return speech;
}

SpeechRecognizer &englishRecognizer() {
    static const auto recognizer = realSpeech().makeRecognizer(u"en-AU"_qs);
    if (!recognizer)
        throw std::runtime_error("there is no recogniser: run scripts/fetch-speech");
    return *recognizer;
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
