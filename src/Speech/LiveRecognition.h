#pragma once

#include "Speech/KeptEngine.h"
#include "Speech/LiveRequest.h"
#include "Speech/Resampler.h"

#include <optional>

namespace lorvane {

/// One live recognition: it transcribes what has been said since its last long pause again and
/// again, and reports the text each time. It lives in its own jobs on the worker.
class LiveRecognition : public std::enable_shared_from_this<LiveRecognition> {
public:
    LiveRecognition(std::shared_ptr<LiveRequest> request, std::shared_ptr<KeptEngine> engine,
                    RecognitionWorker &worker, std::stop_token cancellation, SpeechHandler handler);

    /// Goes on until it is cancelled, the request is full or the engine fails.
    void start() { schedule(worker_.now()); }

private:
    void schedule(RecognitionWorker::TimePoint time);
    void work(std::stop_source &stop);
    void listen(const std::stop_token &stop);
    /// Transcribes the voice if there is more of it than last time.
    void transcribe(const std::stop_token &stop);
    /// How a stretch of the voice read the last time.
    QString lastText(VoiceSpan stretch) const;
    /// Takes the words before the last pause that is long enough as they are.
    void settleBeforePause();
    /// Takes the words before a shorter one as they are, once the last stretch has become long.
    void settleLongStretch(VoiceSpan stretch);
    /// What was said before `time` isn't transcribed again.
    void settle(double time);

    const std::shared_ptr<LiveRequest> request_;
    const std::shared_ptr<KeptEngine> engine_;
    RecognitionWorker &worker_;
    const std::stop_token cancellation_;
    const SpeechHandler handler_;

    // Used on the worker alone.
    std::size_t position_ = 0; ///< in the request
    std::optional<Resampler> resampler_;
    std::optional<VoiceActivity> activity_;
    std::vector<float> samples_; ///< at 16 kHz
    float gain_ = 1;
    double transcribedEnd_ = 0; ///< up to where, in seconds
    QList<TimedWord> words_;
    double settledEnd_ = 0; ///< what was said before it isn't transcribed again
    QList<TimedWord> settledWords_;
};

} // namespace lorvane
