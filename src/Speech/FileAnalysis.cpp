#include "Speech/FileAnalysis.h"

#include "Core/LocalizedError.h"
#include "Speech/Abandoned.h"
#include "Speech/Level.h"

#include <QHash>

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

LocalizedError endedEarly() {
    return LocalizedError(u"The recording could not be read to its end."_qs);
}

std::size_t sampleAt(double time) {
    return static_cast<std::size_t>(time * SpeechModel::sampleRate);
}

} // namespace

FileAnalysis::FileAnalysis(const AudioFormat &format, std::shared_ptr<KeptEngine> engine,
                           QStringList contextualStrings)
    : format_(usable(format)),
      engine_(std::move(engine)),
      options_(optionsWith(std::move(contextualStrings))),
      block_(static_cast<std::size_t>(blockFrames * format.channelCount)),
      mono_(static_cast<std::size_t>(blockFrames)),
      resampler_(format.sampleRate),
      activity_(engine_->use().makeVoiceActivity()) {}

void FileAnalysis::advance(AudioFileReader &file, const std::stop_token &stop) {
    file.seek(position_);
    while (file.length() - position_ >= blockFrames) {
        if (!take(file))
            throw endedEarly();
        if (stop.stop_requested())
            throw Abandoned();
        listen(stepSamples + samplesAhead, stop);
    }
}

bool FileAnalysis::isOf(AudioFileReader &file, const std::stop_token &stop) {
    if (!(file.format() == format_))
        return false;
    file.seek(0);
    std::size_t contents = 0;
    while (file.position() < position_ && readBlock(file, contents) > 0) {
        if (stop.stop_requested())
            throw Abandoned();
    }
    return file.position() == position_ && contents == contents_;
}

void FileAnalysis::finish(AudioFileReader &file, OnResult onResult, const std::stop_token &stop) {
    onResult_ = std::move(onResult);
    for (const SpeechAnalysisResult &result : results_)
        onResult_(result);
    advance(file, stop);
    take(file);
    if (position_ < file.length())
        throw endedEarly();
    resampler_.finish(samples_);
    listen(VoiceActivity::windowSize, stop);
    if (last_)
        give(*last_, stop);
    last_.reset();
    for (const VoiceSpan &place :
         cutter_.finish(static_cast<double>(end()) / SpeechModel::sampleRate))
        give(recognize(place, stop), stop);
}

bool FileAnalysis::take(AudioFileReader &file) {
    const std::size_t count = readBlock(file, contents_);
    position_ += static_cast<qint64>(count);
    mixToMono(block_.data(), count, format_.channelCount, mono_.data());
    resampler_.process(std::span(mono_).first(count), samples_);
    return count == mono_.size();
}

std::size_t FileAnalysis::readBlock(AudioFileReader &file, std::size_t &contents) {
    const auto count = static_cast<std::size_t>(file.read(block_.data(), blockFrames));
    const std::size_t size = count * static_cast<std::size_t>(format_.channelCount);
    contents = qHashBits(block_.data(), size * sizeof(float), contents);
    return count;
}

void FileAnalysis::listen(std::size_t leastSamples, const std::stop_token &stop) {
    cut(stop);
    while (end() - heard_ >= leastSamples) {
        const std::size_t to = std::min(heard_ + stepSamples, end());
        const std::size_t behind = std::min(heard_, samplesBehind);
        gain_ = gainFor(samples(heard_ - behind, heard_ + stepSamples + samplesAhead));
        // Part of the step may have been heard when it was abandoned.
        activity_.listen(amplified(samples(activity_.position(), to), gain_), stop);
        heard_ = activity_.position();
        cut(stop);
        forget();
    }
}

/// Recognises the stretches that end in what has been heard. What it isn't sure of is heard again
/// once another stretch has followed, unless the recording ends soon after that: it would be done
/// while somebody waits, since what is done ahead lags behind by as much.
void FileAnalysis::cut(const std::stop_token &stop) {
    const std::vector<float> &probabilities = activity_.probabilities();
    while (waiting_ || windowsCut_ * VoiceActivity::windowSize < heard_) {
        if (!waiting_)
            waiting_ = cutter_.add(probabilities[windowsCut_++]);
        if (!waiting_)
            continue;
        if (last_) {
            if (windowsCut_ * VoiceActivity::windowSize + samplesAhead <= end())
                hearAgain(*last_, stop);
            give(*last_, stop);
            last_.reset();
        }
        last_ = recognize(*waiting_, stop);
        if (last_->words.isEmpty())
            last_.reset();
        waiting_.reset();
        // What one stretch has left in pieces the next can't use: in an hour it would add up.
        engine_->trim();
    }
}

/// Where there is a voice, from the start of the stretch.
std::vector<VoiceSpan> FileAnalysis::voiceIn(VoiceSpan stretch) const {
    constexpr double window = VoiceActivity::secondsPerWindow;
    const auto first = static_cast<std::size_t>(stretch.start / window);
    const std::size_t last = std::min(static_cast<std::size_t>(stretch.end / window), windowsCut_);
    std::vector<VoiceSpan> spans =
        voiceSpans(std::span(activity_.probabilities()).subspan(first, last - first));
    for (VoiceSpan &span : spans) {
        span.start += static_cast<double>(first) * window - stretch.start;
        span.end += static_cast<double>(first) * window - stretch.start;
    }
    return spans;
}

FileAnalysis::Stretch FileAnalysis::recognize(VoiceSpan place, const std::stop_token &stop) {
    Stretch stretch{place,
                    amplified(samples(sampleAt(place.start), sampleAt(place.end)), gain_),
                    voiceIn(place),
                    {}};
    const double duration = static_cast<double>(stretch.samples.size()) / SpeechModel::sampleRate;
    stretch.words = engine_->use().recognizeStretch(stretch.samples, {0, duration}, engine_->size(),
                                                    options_, stop);
    return stretch;
}

void FileAnalysis::hearAgain(Stretch &stretch, const std::stop_token &stop) {
    stretch.words = engine_->use().recognizeAgain(stretch.words, stretch.samples, stretch.voice,
                                                  engine_->size(), options_, stop);
}

void FileAnalysis::give(const Stretch &stretch, const std::stop_token &stop) {
    const QString text = makeResult(stretch.words, true).formattedString.trimmed();
    if (text.isEmpty())
        return;
    const VoiceSpan place = stretch.place;
    results_.push_back({text, place.start, place.end - place.start, true});
    if (onResult_ && !stop.stop_requested())
        onResult_(results_.back());
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
