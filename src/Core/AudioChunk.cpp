#include "Core/AudioChunk.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lorvane {

QList<AudioChunk> AudioChunk::plan(double duration, double coreDuration, double overlap) {
    QList<AudioChunk> chunks;
    // Written so that NaN, which no comparison holds for, plans nothing.
    if (!(std::isfinite(duration) && duration > 0 && coreDuration > 0 && overlap >= 0))
        return chunks;
    const double pieces = std::ceil(duration / coreDuration);
    if (pieces > std::numeric_limits<int>::max())
        return chunks;
    const int count = static_cast<int>(pieces);
    chunks.reserve(count);
    for (int index = 0; index < count; ++index) {
        const double coreStart = index * coreDuration;
        const double coreEnd = std::min(duration, coreStart + coreDuration);
        chunks.append({.index = index,
                       .start = std::max(0.0, coreStart - overlap),
                       .end = std::min(duration, coreEnd + overlap),
                       .coreStart = coreStart,
                       .coreEnd = coreEnd});
    }
    return chunks;
}

} // namespace lorvane
