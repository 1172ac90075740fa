#include "Speech/Stretches.h"

#include "Speech/StretchLimits.h"

#include <algorithm>

namespace lorvane {

namespace {

/// A whole chunk of a recording stays in one piece.
constexpr double longestPiece = 32.5;

/// Cuts a voice that goes on for too long where it is weakest.
void appendCut(VoiceSpan span, std::span<const float> probabilities,
               std::vector<VoiceSpan> &spans) {
    while (span.end - span.start > longestPiece) {
        const auto window = [&](double seconds) {
            return probabilities.begin() +
                   static_cast<std::ptrdiff_t>((span.start + seconds) /
                                               VoiceActivity::secondsPerWindow);
        };
        const auto weakest = std::min_element(window(earliestCut), window(latestCut));
        const double cut = (static_cast<double>(weakest - probabilities.begin()) + 0.5) *
                           VoiceActivity::secondsPerWindow;
        spans.push_back({span.start, cut});
        span.start = cut;
    }
    spans.push_back(span);
}

} // namespace

std::vector<VoiceSpan> planStretches(std::span<const float> probabilities, double duration) {
    std::vector<VoiceSpan> spans;
    for (const VoiceSpan &span : voiceSpans(probabilities))
        appendCut(span, probabilities, spans);

    std::vector<VoiceSpan> stretches;
    for (const VoiceSpan &span : spans) {
        if (!stretches.empty() && span.start - stretches.back().end < longestPause &&
            span.end - stretches.back().start < longestPiece)
            stretches.back().end = span.end;
        else
            stretches.push_back(span);
    }
    // The margins of neighbours meet halfway.
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const double earliest = i ? stretches[i - 1].end : 0;
        const double latest =
            i + 1 < stretches.size() ? (stretches[i].end + stretches[i + 1].start) / 2 : duration;
        stretches[i].start = std::max(stretches[i].start - marginBefore, earliest);
        stretches[i].end = std::min(stretches[i].end + marginAfter, latest);
    }
    return stretches;
}

} // namespace lorvane
