#pragma once

#include "Speech/Decoding.h"
#include "Speech/Rehearing.h"

#include <functional>
#include <map>
#include <memory>

namespace lorvane {

/// How the text of a stretch is looked for: a token at a time, or with a few texts side by side,
/// which errs less, takes a little longer and tells how probable the words are.
enum class Search { greedy, beam };

/// The recognition of one language: models that are loaded when they are first needed, and stay.
/// One thread at a time.
class SpeechEngine {
public:
    /// `voiceActivity` is the path of the detector's model.
    SpeechEngine(OnnxRuntime &runtime, ModelFolder folder, QString voiceActivity);

    /// Loads what is not loaded yet of a size such as "base". Throws LocalizedError.
    void load(const QString &size);

    /// Gives the memory of the models back, until they are needed again.
    void unload();

    /// Throws LocalizedError.
    VoiceActivity makeVoiceActivity();

    /// The words of finished audio, mono at 16 kHz, of any length. Nothing but silence and noise
    /// gives none. Throws LocalizedError, and Abandoned once `stop` is asked for.
    QList<TimedWord> recognize(std::span<const float> samples, const QString &size,
                               const SpeechOptions &options, const std::stop_token &stop,
                               Search search = Search::beam);

    /// The words of one stretch of `samples` in which there is a voice, at most
    /// SpeechModel::longestStretch long, with times from the start of `samples`. Throws the same.
    QList<TimedWord> recognizeStretch(std::span<const float> samples, VoiceSpan stretch,
                                      const QString &size, const SpeechOptions &options,
                                      const std::stop_token &stop, Search search = Search::beam);

    /// The same for a stretch whose end still grows, looked for a token at a time. `draft` is what
    /// it read before: as far as it does so again it costs next to nothing.
    QList<TimedWord> recognizeGrowing(std::span<const float> samples, VoiceSpan stretch,
                                      const QString &size, const QString &draft,
                                      const std::stop_token &stop);

    /// The `words` of all of `samples`, heard with their probabilities, or surer ones: where it
    /// isn't sure of them or may have passed over some, it hears `samples` once more, divided at
    /// the pauses between the spans of `voice`, which costs no more than the first time. Throws the
    /// same.
    QList<TimedWord> recognizeAgain(const QList<TimedWord> &words, std::span<const float> samples,
                                    const std::vector<VoiceSpan> &voice, const QString &size,
                                    const SpeechOptions &options, const std::stop_token &stop);

private:
    using Decode = std::function<Decoding(Hearing &)>;

    SpeechModel &model(const QString &size);
    bool hasVoice(std::span<const float> samples, const std::stop_token &stop);
    QList<TimedWord> hear(std::span<const float> samples, VoiceSpan stretch, const QString &size,
                          const Decode &decode, const std::stop_token &stop);
    Attempt attempt(std::span<const float> samples, VoiceSpan stretch, SpeechModel &model,
                    const Decode &decode, const std::stop_token &stop);

    OnnxRuntime &runtime_;
    ModelFolder folder_;
    QString voiceActivityPath_;
    std::unique_ptr<TokenTable> tokens_;
    std::unique_ptr<VoiceActivityModel> voiceActivity_;
    std::map<QString, std::unique_ptr<SpeechModel>> models_;
};

/// A result of the words, joined by blanks.
SpeechResult makeResult(const QList<TimedWord> &words, bool isFinal);

} // namespace lorvane
