#pragma once

#include "Platform/AudioFile.h"
#include "Platform/Speech.h"
#include "Speech/KeptEngine.h"
#include "Speech/Resampler.h"
#include "Speech/StretchCutter.h"

namespace lorvane {

/// Transcribes a recording of any length stretch by stretch, in constant memory. It takes the file
/// in blocks counted from its start and decides on nothing but what it has heard, so that a file
/// that is still being written gives the same results as the finished one. One thread at a time.
class FileAnalysis {
public:
    using OnResult = SpeechAnalyzer::OnResult;

    /// Throws LocalizedError for a format that can't be heard.
    FileAnalysis(const AudioFormat &format, std::shared_ptr<KeptEngine> engine,
                 QStringList contextualStrings);

    /// Hears what `file` holds more than last time. Throws LocalizedError, which ends the analysis,
    /// and Abandoned once `stop` is asked for: it can go on from there.
    void advance(AudioFileReader &file, const std::stop_token &stop);

    /// Whether `file` begins with all that has been heard. Throws the same.
    bool isOf(AudioFileReader &file, const std::stop_token &stop);

    /// How many stretches with words are settled.
    std::size_t settledCount() const { return results_.size() + (last_ ? 1 : 0); }

    /// Hears the rest of the finished `file`, and gives each stretch: those that are settled at
    /// once, the others when they are. Throws the same, also when the file ends too early.
    void finish(AudioFileReader &file, OnResult onResult, const std::stop_token &stop);

private:
    /// Takes the next block; false when there is no whole one.
    bool take(AudioFileReader &file);
    std::size_t readBlock(AudioFileReader &file, std::size_t &contents);
    /// Listens on as long as at least `leastSamples` are unheard.
    void listen(std::size_t leastSamples, const std::stop_token &stop);
    void cut(const std::stop_token &stop);
    std::vector<VoiceSpan> voiceIn(VoiceSpan stretch) const;
    struct Stretch {
        VoiceSpan place;
        std::vector<float> samples;
        std::vector<VoiceSpan> voice; ///< from its start, as the words
        QList<TimedWord> words;
    };
    Stretch recognize(VoiceSpan place, const std::stop_token &stop);
    void hearAgain(Stretch &stretch, const std::stop_token &stop);
    void give(const Stretch &stretch, const std::stop_token &stop);
    void forget();
    std::size_t end() const { return firstSample_ + samples_.size(); }
    std::span<const float> samples(std::size_t from, std::size_t to) const;

    const AudioFormat format_;
    const std::shared_ptr<KeptEngine> engine_;
    SpeechOptions options_;
    std::vector<float> block_;
    std::vector<float> mono_;
    qint64 position_ = 0;      ///< in frames of the file
    std::size_t contents_ = 0; ///< a hash of the frames up to there
    Resampler resampler_;
    std::vector<float> samples_; ///< at 16 kHz, from `firstSample_` on
    std::size_t firstSample_ = 0;
    std::size_t heard_ = 0; ///< up to which sample the detector has listened
    VoiceActivity activity_;
    std::size_t windowsCut_ = 0; ///< up to which window the cutter knows them
    StretchCutter cutter_;
    std::optional<VoiceSpan> waiting_; ///< to be recognised
    float gain_ = 1;
    std::optional<Stretch> last_; ///< settled, but nothing has followed it yet
    std::vector<SpeechAnalysisResult> results_;
    OnResult onResult_;
};

} // namespace lorvane
