#include "Speech/FileAnalysis.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"
#include "Speech/Level.h"

#include <algorithm>

namespace lorvane {

namespace {

constexpr qsizetype blockFrames = 8192;

/// The detector listens in steps of about a second. How loud the voice is, is told by what was said
/// around each step: the last half minute, and a little more than is listened to.
constexpr std::size_t stepSamples = 32 * VoiceActivity::windowSize;
constexpr std::size_t samplesAhead = 5 * stepSamples;
constexpr std::size_t samplesBehind = 32 * stepSamples;

SpeechOptions optionsWith(QStringList contextualStrings) {
    SpeechOptions options;
    options.reportPartialResults = false;
    options.contextualStrings = std::move(contextualStrings);
    return options;
}

const AudioFormat &usable(const AudioFormat &format) {
    if (!format.isUsable())
        throw LocalizedError(u"There is no audio in the recording."_qs);
    return format;
}

std::size_t sampleAt(double time) {
    return static_cast<std::size_t>(time * SpeechModel::sampleRate);
}

} // namespace

FileAnalysis::FileAnalysis(const AudioFormat &format, SpeechEngine &engine,
                           QStringList contextualStrings)
    : format_(usable(format)),
      engine_(engine),
      options_(optionsWith(std::move(contextualStrings))),
      block_(static_cast<std::size_t>(blockFrames * format.channelCount)),
      mono_(static_cast<std::size_t>(blockFrames)),
      resampler_(format.sampleRate),
      activity_(engine.makeVoiceActivity()) {}

void FileAnalysis::advance(AudioFileReader &file, const OnResult &onResult,
                           const std::stop_token &stop) {
    file.seek(position_);
    while (file.length() - position_ >= blockFrames && take(file)) {
        if (stop.stop_requested())
            throw Abandoned();
        listen(stepSamples + samplesAhead, onResult, stop);
    }
}

void FileAnalysis::finish(AudioFileReader &file, const OnResult &onResult,
                          const std::stop_token &stop) {
    advance(file, onResult, stop);
    take(file);
    if (position_ < file.length())
        throw LocalizedError(u"The recording could not be read to its end."_qs);
    resampler_.finish(samples_);
    listen(VoiceActivity::windowSize, onResult, stop);
    for (const VoiceSpan &stretch :
         cutter_.finish(static_cast<double>(end()) / SpeechModel::sampleRate))
        recognize(stretch, onResult, stop);
}

bool FileAnalysis::take(AudioFileReader &file) {
    const qsizetype frameCount = file.read(block_.data(), blockFrames);
    const auto count = static_cast<std::size_t>(frameCount);
    position_ += frameCount;
    mixToMono(block_.data(), count, format_.channelCount, mono_.data());
    resampler_.process(std::span(mono_).first(count), samples_);
    return frameCount == blockFrames;
}

void FileAnalysis::listen(std::size_t leastSamples, const OnResult &onResult,
                          const std::stop_token &stop) {
    while (end() - heard_ >= leastSamples) {
        const std::size_t to = std::min(heard_ + stepSamples, end());
        const std::size_t behind = std::min(heard_, samplesBehind);
        gain_ = gainFor(samples(heard_ - behind, heard_ + stepSamples + samplesAhead));
        activity_.listen(amplified(samples(heard_, to), gain_), stop);
        heard_ = activity_.position();
        const std::vector<float> &probabilities = activity_.probabilities();
        for (; windowsCut_ < probabilities.size(); ++windowsCut_) {
            if (const auto stretch = cutter_.add(probabilities[windowsCut_]))
                recognize(*stretch, onResult, stop);
        }
        forget();
    }
}

void FileAnalysis::recognize(VoiceSpan stretch, const OnResult &onResult,
                             const std::stop_token &stop) {
    const std::vector<float> voice =
        amplified(samples(sampleAt(stretch.start), sampleAt(stretch.end)), gain_);
    const double duration = static_cast<double>(voice.size()) / SpeechModel::sampleRate;
    const QList<TimedWord> words =
        engine_.recognizeStretch(voice, {0, duration}, fileModel, options_, stop);
    const QString text = makeResult(words, true).formattedString.trimmed();
    if (!text.isEmpty() && !stop.stop_requested())
        onResult({text, stretch.start, stretch.end - stretch.start, true});
}

/// Lets go of the samples that nothing needs any more.
void FileAnalysis::forget() {
    const std::size_t open = sampleAt(cutter_.openStart());
    const std::size_t needed = std::min(open, heard_ - std::min(heard_, samplesBehind));
    if (needed < firstSample_ + stepSamples)
        return;
    samples_.erase(samples_.begin(),
                   samples_.begin() + static_cast<std::ptrdiff_t>(needed - firstSample_));
    firstSample_ = needed;
}

std::span<const float> FileAnalysis::samples(std::size_t from, std::size_t to) const {
    const std::size_t last = std::min(to, end());
    return std::span(samples_).subspan(from - firstSample_, last - from);
}

} // namespace lorvane
