#pragma once

#include "Platform/AudioFile.h"
#include "Platform/Speech.h"
#include "Speech/Resampler.h"
#include "Speech/SpeechEngine.h"
#include "Speech/StretchCutter.h"

namespace lorvane {

/// Transcribes a recording of any length stretch by stretch, in constant memory. It takes the file
/// in blocks counted from its start and decides on nothing but what it has heard, so that a file
/// that is still being written gives the same results as the finished one. One thread at a time.
class FileAnalysis {
public:
    using OnResult = std::function<void(const SpeechAnalysisResult &)>;

    /// `engine` outlives this. Throws LocalizedError for a format that can't be heard.
    FileAnalysis(const AudioFormat &format, SpeechEngine &engine, QStringList contextualStrings);

    /// Hears what `file` holds more than last time, and gives each stretch that is settled. Throws
    /// LocalizedError, and Abandoned once `stop` is asked for: neither can be gone on from.
    void advance(AudioFileReader &file, const OnResult &onResult, const std::stop_token &stop);

    /// Hears the rest of the finished `file`. Throws the same, also when it ends too early.
    void finish(AudioFileReader &file, const OnResult &onResult, const std::stop_token &stop);

private:
    /// Takes the next block; false when there is no whole one.
    bool take(AudioFileReader &file);
    /// Listens on as long as at least `leastSamples` are unheard.
    void listen(std::size_t leastSamples, const OnResult &onResult, const std::stop_token &stop);
    void recognize(VoiceSpan stretch, const OnResult &onResult, const std::stop_token &stop);
    void forget();
    std::size_t end() const { return firstSample_ + samples_.size(); }
    std::span<const float> samples(std::size_t from, std::size_t to) const;

    const AudioFormat format_;
    SpeechEngine &engine_;
    SpeechOptions options_;
    std::vector<float> block_;
    std::vector<float> mono_;
    qint64 position_ = 0; ///< in frames of the file
    Resampler resampler_;
    std::vector<float> samples_; ///< at 16 kHz, from `firstSample_` on
    std::size_t firstSample_ = 0;
    std::size_t heard_ = 0; ///< up to which sample the detector has listened
    VoiceActivity activity_;
    std::size_t windowsCut_ = 0; ///< up to which window the cutter knows them
    StretchCutter cutter_;
    float gain_ = 1;
};

} // namespace lorvane
