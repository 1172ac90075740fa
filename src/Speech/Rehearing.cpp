#include "Speech/Rehearing.h"

#include "Speech/SpeechModel.h"

#include <algorithm>
#include <limits>

namespace lorvane {

namespace {

/// A shorter stretch stays as it was heard: a part of it would hold no word as a whole.
constexpr double shortestToDivide = 3;

/// It is divided in its middle third, at the weakest moment of about this length.
constexpr std::size_t momentSamples = SpeechModel::sampleRate / 10;

double placeToDivide(std::span<const float> samples, VoiceSpan stretch) {
    const double third = (stretch.end - stretch.start) / 3;
    const auto index = [&](double time) {
        return std::min(static_cast<std::size_t>(time * SpeechModel::sampleRate), samples.size());
    };
    const std::size_t last = index(stretch.end - third);
    std::size_t weakest = index(stretch.start + third);
    float least = std::numeric_limits<float>::infinity();
    for (std::size_t i = weakest; i + momentSamples <= last; i += momentSamples / 4) {
        float power = 0;
        for (const float sample : samples.subspan(i, momentSamples))
            power += sample * sample;
        if (power < least) {
            least = power;
            weakest = i;
        }
    }
    const std::size_t middle = weakest + momentSamples / 2;
    return static_cast<double>(middle) / SpeechModel::sampleRate;
}

} // namespace

QList<TimedWord> hearWithoutLoss(std::span<const float> samples, VoiceSpan stretch,
                                 const std::function<Attempt(VoiceSpan)> &hear) {
    Attempt attempt = hear(stretch);
    if (!attempt.isBroken || stretch.end - stretch.start < shortestToDivide)
        return std::move(attempt.words);
    const double middle = placeToDivide(samples, stretch);
    QList<TimedWord> words = hearWithoutLoss(samples, {stretch.start, middle}, hear);
    words.append(hearWithoutLoss(samples, {middle, stretch.end}, hear));
    return words;
}

} // namespace lorvane
