#pragma once

#include "Platform/Speech.h"
#include "Speech/WordTimings.h"

namespace lorvane {

/// The words of a piece of a recording without those that belong to its neighbours: where a
/// word starts decides. Near the border both pieces may keep a word, so that none is lost where
/// their timings differ a little, unless it stands before or among those that were written already.
/// What stands at a cut edge is half a word, and never kept. `duration` is the piece's in seconds.
QList<TimedWord> ownWords(const QList<TimedWord> &words, double duration,
                          const SpeechContext &context);

} // namespace lorvane
