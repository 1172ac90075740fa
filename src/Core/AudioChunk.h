#pragma once

#include <QList>

namespace lorvane {

/// One planned piece of a long recording. All times are seconds from the recording's start.
struct AudioChunk {
    int index = 0;        ///< position in the plan, from 0
    double start = 0;     ///< where the piece's audio begins, overlap included
    double end = 0;       ///< where the piece's audio ends, overlap included
    double coreStart = 0; ///< where the piece's own span begins
    double coreEnd = 0;   ///< where the piece's own span ends

    bool operator==(const AudioChunk &) const = default;

    /// Pieces of `coreDuration` that cover the recording, each reaching `overlap` into its
    /// neighbours. Empty unless duration (finite) and coreDuration are above 0 and overlap is not
    /// below it, and for more pieces than an int can count.
    static QList<AudioChunk> plan(double duration, double coreDuration = 30, double overlap = 1);
};

} // namespace lorvane
