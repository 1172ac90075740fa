#pragma once

#include "Speech/VoiceActivity.h"
#include "Speech/WordTimings.h"

#include <functional>

namespace lorvane {

/// What one attempt to hear a stretch gave.
struct Attempt {
    QList<TimedWord> words;
    bool isBroken = false; ///< the model lost itself: what it didn't say after that is not there
};

/// The words of a stretch of `samples` as `hear` hears them. A stretch in which the model loses
/// itself is heard again in two parts, so that what was said behind that place isn't lost: until
/// nothing is lost or the parts are too short for more. Throws what `hear` throws.
QList<TimedWord> hearWithoutLoss(std::span<const float> samples, VoiceSpan stretch,
                                 const std::function<Attempt(VoiceSpan)> &hear);

} // namespace lorvane
