#include "Speech/LiveRecognition.h"

#include "Speech/Abandoned.h"
#include "Speech/Level.h"
#include "Speech/StretchLimits.h"
#include "Speech/Stretches.h"

#include <algorithm>
#include <iterator>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

/// From the start of one transcription to that of the next, if it doesn't take longer itself.
constexpr auto updateInterval = 250ms;
/// The share of its time that the worker rests after a transcription, to stay below one core.
constexpr int restingShare = 4;

/// What stands before a pause of so many seconds is settled when the voice goes on: next to a whole
/// sentence the model may overlook the first words of another one.
constexpr double settlingPause = 0.4;
/// So much of a pause has to be heard with the words before it, for them to be whole.
constexpr double pauseHeard = 0.3;

/// When more than this many seconds are open to change, what stands before a pause is settled, so
/// that an update stays cheap and the text calm. This much stays open around the pause.
constexpr double longestOpenStretch = 8;
constexpr double contextKept = 3;

} // namespace

LiveRecognition::LiveRecognition(std::shared_ptr<LiveRequest> request,
                                 std::shared_ptr<KeptEngine> engine, RecognitionWorker &worker,
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
    const auto start = worker_.now();
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
    const auto end = worker_.now();
    schedule(std::max(start + updateInterval, end + (end - start) / restingShare));
}

void LiveRecognition::listen(const std::stop_token &stop) {
    if (!resampler_) {
        resampler_.emplace(request_->sampleRate());
        activity_.emplace(engine_->use().makeVoiceActivity());
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
    settleBeforePause();
    const std::vector<float> voice = amplified(samples_, gain_);
    QList<TimedWord> words = settledWords_;
    for (const VoiceSpan &stretch : stretches) {
        const VoiceSpan open{std::max(stretch.start, settledEnd_), stretch.end};
        if (open.end > open.start)
            words.append(engine_->use().recognizeGrowing(voice, open, engine_->size(),
                                                         lastText(open), stop));
    }
    transcribedEnd_ = stretches.back().end;
    words_ = std::move(words);
    handler_(makeResult(words_, false), {});
    settleLongStretch(stretches.back());
}

QString LiveRecognition::lastText(VoiceSpan stretch) const {
    QStringList words;
    for (const TimedWord &word : words_) {
        if (word.start >= stretch.start && word.start < stretch.end)
            words.append(word.text);
    }
    return words.join(u' ');
}

void LiveRecognition::settleBeforePause() {
    const std::vector<VoiceSpan> spans = voiceSpans(activity_->probabilities());
    for (std::size_t i = spans.size(); i-- > 1;) {
        const VoiceSpan pause{spans[i - 1].end, spans[i].start};
        if (pause.end - pause.start < settlingPause || pause.start + pauseHeard > transcribedEnd_)
            continue;
        if (pause.start >= settledEnd_)
            settle(std::max((pause.start + pause.end) / 2, pause.end - marginBefore));
        return;
    }
}

void LiveRecognition::settleLongStretch(VoiceSpan stretch) {
    const double start = std::max(stretch.start, settledEnd_);
    if (stretch.end - start < longestOpenStretch)
        return;
    const std::vector<VoiceSpan> spans = voiceSpans(activity_->probabilities());
    double widest = 0;
    double cut = start;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        const double pause = spans[i].start - spans[i - 1].end;
        if (spans[i - 1].end > start + contextKept && spans[i].start < stretch.end - contextKept &&
            pause > widest) {
            widest = pause;
            cut = spans[i - 1].end + pause / 2;
        }
    }
    settle(cut);
}

void LiveRecognition::settle(double cut) {
    settledEnd_ = cut;
    settledWords_.clear();
    std::copy_if(words_.begin(), words_.end(), std::back_inserter(settledWords_),
                 [cut](const TimedWord &word) { return word.start < cut; });
}

} // namespace lorvane
