#include "Speech/StretchCutter.h"

#include "Speech/StretchLimits.h"

#include <algorithm>

namespace lorvane {

namespace {

/// From this length on a stretch ends at the next pause that is as long as between sentences: a
/// model that hears several speakers or subjects at once makes more errors. See docs/recogniser.md.
constexpr double fullStretch = 6;
constexpr double sentencePause = 1;
/// At this length it has to be cut, at the widest pause or else at the weakest moment.
constexpr double longestStretch = 30;
constexpr double shortestStretch = 5;

/// So much is kept of a silence: a voice that begins may not have lasted long enough yet.
constexpr double beginning = 1;

std::size_t windowAt(double time) {
    return static_cast<std::size_t>(time / VoiceActivity::secondsPerWindow);
}

} // namespace

std::optional<VoiceSpan> StretchCutter::add(float probability) {
    probabilities_.push_back(probability);
    return next();
}

std::vector<VoiceSpan> StretchCutter::finish(double duration) {
    duration_ = duration;
    std::vector<VoiceSpan> stretches;
    while (const std::optional<VoiceSpan> stretch = next())
        stretches.push_back(*stretch);
    return stretches;
}

std::optional<VoiceSpan> StretchCutter::next() {
    const double firstTime = static_cast<double>(firstWindow_) * VoiceActivity::secondsPerWindow;
    const double heard =
        firstTime + static_cast<double>(probabilities_.size()) * VoiceActivity::secondsPerWindow;
    std::vector<VoiceSpan> spans = voiceSpans(probabilities_);
    for (VoiceSpan &span : spans) {
        span.start += firstTime;
        span.end += firstTime;
    }
    if (spans.empty()) {
        skipSilence(heard);
        return {};
    }
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const double length = spans[i].end - spans.front().start;
        if (length > longestStretch)
            return take(cutLong(spans));
        const double pause = (i + 1 < spans.size() ? spans[i + 1].start : heard) - spans[i].end;
        if (pause >= (length < fullStretch ? longestPause : sentencePause))
            return take(cutAfter(spans, i));
    }
    if (!duration_)
        return {};
    return take(cutAfter(spans, spans.size() - 1));
}

/// The margins of neighbours meet halfway.
VoiceSpan StretchCutter::cutAfter(const std::vector<VoiceSpan> &spans, std::size_t last) const {
    double latest = spans[last].end + marginAfter;
    if (last + 1 < spans.size())
        latest = std::min(latest, (spans[last].end + spans[last + 1].start) / 2);
    if (duration_)
        latest = std::min(latest, *duration_);
    return {std::max(spans.front().start - marginBefore, openStart_), latest};
}

VoiceSpan StretchCutter::cutLong(const std::vector<VoiceSpan> &spans) const {
    const double start = spans.front().start;
    std::size_t cut = spans.size();
    double widest = 0;
    for (std::size_t i = 0; i + 1 < spans.size(); ++i) {
        const double pause = spans[i + 1].start - spans[i].end;
        const double length = spans[i].end - start;
        if (length >= shortestStretch && length <= latestCut && pause > widest) {
            widest = pause;
            cut = i;
        }
    }
    if (cut < spans.size())
        return cutAfter(spans, cut);
    const auto window = [&](double seconds) {
        return probabilities_.begin() +
               static_cast<std::ptrdiff_t>(windowAt(start + seconds) - firstWindow_);
    };
    const auto weakest = std::min_element(window(earliestCut), window(latestCut));
    const auto windows = static_cast<double>(firstWindow_) +
                         static_cast<double>(weakest - probabilities_.begin()) + 0.5;
    return {std::max(start - marginBefore, openStart_), windows * VoiceActivity::secondsPerWindow};
}

VoiceSpan StretchCutter::take(VoiceSpan stretch) {
    openStart_ = stretch.end;
    const std::size_t count = std::min(windowAt(stretch.end) - firstWindow_, probabilities_.size());
    probabilities_.erase(probabilities_.begin(),
                         probabilities_.begin() + static_cast<std::ptrdiff_t>(count));
    firstWindow_ += count;
    return stretch;
}

void StretchCutter::skipSilence(double heard) {
    const std::size_t first = windowAt(std::max(0.0, heard - beginning));
    if (first <= firstWindow_)
        return;
    probabilities_.erase(probabilities_.begin(),
                         probabilities_.begin() +
                             static_cast<std::ptrdiff_t>(first - firstWindow_));
    firstWindow_ = first;
    openStart_ = std::max(openStart_, static_cast<double>(first) * VoiceActivity::secondsPerWindow -
                                          marginBefore);
}

} // namespace lorvane
