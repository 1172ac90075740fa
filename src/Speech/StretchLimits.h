#pragma once

namespace lorvane {

// What holds for every stretch, in seconds, whether a whole recording is cut or one that goes on.

// The detector comes late on soft sounds.
constexpr double marginBefore = 0.4;
constexpr double marginAfter = 0.5;

/// A pause in which the model may lose the thread, and which costs time: it always ends a stretch.
constexpr double longestPause = 4;
/// Between these two a voice without a pause is cut, where it is weakest.
constexpr double earliestCut = 20;
constexpr double latestCut = 28;

} // namespace lorvane
