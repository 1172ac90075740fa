#include "Speech/SpeechEngine.h"

#include "Core/LocalizedError.h"
#include "Speech/BeamSearch.h"
#include "Speech/Level.h"
#include "Speech/OwnWords.h"
#include "Speech/PhraseBias.h"
#include "Speech/SecondHearing.h"
#include "Speech/Stretches.h"

#include <algorithm>

namespace lorvane {

namespace {

std::span<const float> partOf(std::span<const float> samples, VoiceSpan part) {
    const auto index = [&](double time) {
        return std::min(static_cast<std::size_t>(time * SpeechModel::sampleRate), samples.size());
    };
    const std::size_t start = index(part.start);
    return samples.subspan(start, index(part.end) - start);
}

} // namespace

SpeechEngine::SpeechEngine(OnnxRuntime &runtime, ModelFolder folder, QString voiceActivity)
    : runtime_(runtime), folder_(std::move(folder)), voiceActivityPath_(std::move(voiceActivity)) {}

void SpeechEngine::load(const QString &size) {
    makeVoiceActivity();
    model(size);
}

void SpeechEngine::unload() {
    models_.clear();
    tokens_.reset();
}

VoiceActivity SpeechEngine::makeVoiceActivity() {
    if (!voiceActivity_)
        voiceActivity_ = std::make_unique<VoiceActivityModel>(runtime_, voiceActivityPath_);
    return VoiceActivity(*voiceActivity_);
}

SpeechModel &SpeechEngine::model(const QString &size) {
    std::unique_ptr<SpeechModel> &model = models_[size];
    if (!tokens_)
        tokens_ = std::make_unique<TokenTable>(folder_.tokens);
    if (!model) {
        if (!folder_.sizes.contains(size))
            throw LocalizedError(u"There is no speech model of the size “%1”."_qs.arg(size));
        model = std::make_unique<SpeechModel>(runtime_, folder_.sizes[size]);
    }
    return *model;
}

QList<TimedWord> SpeechEngine::recognize(std::span<const float> samples, const QString &size,
                                         const SpeechOptions &options, const std::stop_token &stop,
                                         Search search) {
    const std::vector<float> voice = amplified(samples, gainFor(samples));
    VoiceActivity activity = makeVoiceActivity();
    activity.listen(voice, stop);
    const double duration = static_cast<double>(samples.size()) / SpeechModel::sampleRate;
    QList<TimedWord> words;
    for (const VoiceSpan &stretch : planStretches(activity.probabilities(), duration))
        words.append(recognizeStretch(voice, stretch, size, options, stop, search));
    return ownWords(words, duration, options.context);
}

QList<TimedWord> SpeechEngine::recognizeStretch(std::span<const float> samples, VoiceSpan stretch,
                                                const QString &size, const SpeechOptions &options,
                                                const std::stop_token &stop, Search search) {
    const auto decode = [&](Hearing &hearing) {
        return !options.contextualStrings.isEmpty()
                   ? decodeWithPhrases(hearing, options.contextualStrings, *tokens_, stop)
               : search == Search::beam ? decodeWithBeam(hearing, *tokens_, stop)
                                        : decodeGreedily(hearing, false, stop);
    };
    return hear(samples, stretch, size, decode, stop);
}

QList<TimedWord> SpeechEngine::recognizeGrowing(std::span<const float> samples, VoiceSpan stretch,
                                                const QString &size, const QString &draft,
                                                const std::stop_token &stop) {
    const auto decode = [&](Hearing &hearing) {
        return decodeGreedily(hearing, false, stop, tokens_->encode(draft));
    };
    return hear(samples, stretch, size, decode, stop);
}

QList<TimedWord> SpeechEngine::hear(std::span<const float> samples, VoiceSpan stretch,
                                    const QString &size, const Decode &decode,
                                    const std::stop_token &stop) {
    return hearWithoutLoss(samples, stretch, [&](VoiceSpan part) {
        // A part may be all silence, which the model would make words of.
        const bool isPart = part.start > stretch.start || part.end < stretch.end;
        return isPart && !hasVoice(partOf(samples, part), stop)
                   ? Attempt()
                   : attempt(samples, part, model(size), decode, stop);
    });
}

QList<TimedWord> SpeechEngine::recognizeAgain(const QList<TimedWord> &words,
                                              std::span<const float> samples,
                                              const std::vector<VoiceSpan> &voice,
                                              const QString &size, const SpeechOptions &options,
                                              const std::stop_token &stop) {
    const double duration = static_cast<double>(samples.size()) / SpeechModel::sampleRate;
    return hearAgain(words, partsOf(voice, duration), options.contextualStrings,
                     [&](VoiceSpan part) {
                         return recognizeStretch(samples, part, size, SpeechOptions(), stop);
                     });
}

bool SpeechEngine::hasVoice(std::span<const float> samples, const std::stop_token &stop) {
    VoiceActivity activity = makeVoiceActivity();
    activity.listen(samples, stop);
    return !voiceSpans(activity.probabilities()).empty();
}

Attempt SpeechEngine::attempt(std::span<const float> samples, VoiceSpan stretch, SpeechModel &model,
                              const Decode &decode, const std::stop_token &stop) {
    const std::span<const float> voice = partOf(samples, stretch);
    Hearing hearing = model.hear(voice, stop);
    const Decoding decoding = decode(hearing);
    Attempt attempt{
        timedWords(decoding, *tokens_, static_cast<double>(voice.size()) / SpeechModel::sampleRate),
        decoding.isBroken};
    const double offset =
        static_cast<double>(voice.data() - samples.data()) / SpeechModel::sampleRate;
    for (TimedWord &word : attempt.words) {
        word.start += offset;
        word.end += offset;
    }
    return attempt;
}

SpeechResult makeResult(const QList<TimedWord> &words, bool isFinal) {
    SpeechResult result;
    result.isFinal = isFinal;
    for (const TimedWord &word : words) {
        if (!result.formattedString.isEmpty())
            result.formattedString += u' ';
        result.segments.append(
            {result.formattedString.size(), word.text, word.start, word.end - word.start});
        result.formattedString += word.text;
    }
    return result;
}

} // namespace lorvane
