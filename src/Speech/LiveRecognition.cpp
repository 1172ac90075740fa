#include "Speech/LiveRecognition.h"

#include "Speech/Abandoned.h"
#include "Speech/Level.h"
#include "Speech/Stretches.h"

#include <algorithm>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

/// From the start of one transcription to that of the next, if it doesn't take longer itself.
constexpr auto interval = 500ms;
/// The share of its time that the worker rests after a transcription, to stay below one core.
constexpr int restingShare = 4;

} // namespace

LiveRecognition::LiveRecognition(std::shared_ptr<LiveRequest> request,
                                 std::shared_ptr<SpeechEngine> engine, RecognitionWorker &worker,
                                 std::stop_token cancellation, SpeechHandler handler)
    : request_(std::move(request)),
      engine_(std::move(engine)),
      worker_(worker),
      cancellation_(std::move(cancellation)),
      handler_(std::move(handler)) {}

void LiveRecognition::schedule(RecognitionWorker::TimePoint time) {
    worker_.postInBackground(
        time, [self = shared_from_this()](std::stop_source &stop) { self->work(stop); });
}

void LiveRecognition::work(std::stop_source &stop) {
    const std::stop_callback link(cancellation_, [&stop] { stop.request_stop(); });
    const auto start = std::chrono::steady_clock::now();
    try {
        const bool isLast = request_->isFull();
        listen(stop.get_token());
        transcribe(stop.get_token());
        if (isLast) {
            handler_(makeResult(words_, true), {});
            return;
        }
    } catch (const Abandoned &) {
        // Cancelled, or a file has to be recognised first.
    } catch (const std::exception &error) {
        handler_({}, QString::fromUtf8(error.what()));
        return;
    }
    if (cancellation_.stop_requested())
        return;
    const auto end = std::chrono::steady_clock::now();
    schedule(std::max(start + interval, end + (end - start) / restingShare));
}

void LiveRecognition::listen(const std::stop_token &stop) {
    if (!resampler_) {
        resampler_.emplace(request_->sampleRate());
        activity_.emplace(engine_->makeVoiceActivity());
    }
    const std::span<const float> fresh = request_->from(position_);
    position_ += fresh.size();
    resampler_->process(fresh, samples_);
    gain_ = gainFor(samples_);
    const auto unheard = std::span<const float>(samples_).subspan(activity_->position());
    activity_->listen(amplified(unheard, gain_), stop);
}

void LiveRecognition::transcribe(const std::stop_token &stop) {
    const double duration = static_cast<double>(samples_.size()) / SpeechModel::sampleRate;
    const std::vector<VoiceSpan> stretches = planStretches(activity_->probabilities(), duration);
    if (stretches.empty() || stretches.back().end == transcribedEnd_)
        return;
    QList<TimedWord> words;
    for (const VoiceSpan &stretch : stretches)
        words.append(
            engine_->recognizeStretch(samples_, stretch, liveModel, request_->options(), stop));
    transcribedEnd_ = stretches.back().end;
    const bool isNews =
        makeResult(words, false).formattedString != makeResult(words_, false).formattedString;
    words_ = std::move(words);
    if (isNews)
        handler_(makeResult(words_, false), {});
}

} // namespace lorvane
