#pragma once

#include "Speech/VoiceActivity.h"
#include "Speech/WordTimings.h"

#include <functional>

namespace lorvane {

// A model hears a voice by what was said before it, which helps with most words and misleads it
// with some. So what it isn't sure of is heard a second time in parts, and of two hearings that
// differ the surer one is right more often than not. The idea of joining hearings is that of
// J. G. Fiscus, "A post-processing system to yield reduced word error rates: Recognizer Output
// Voting Error Reduction (ROVER)", 1997; what is compared is ours: see docs/recogniser.md.

/// Divides a stretch of `duration` seconds at the pauses between its spans of `voice`, so that each
/// part is long enough to be understood by itself, with little silence around it. The parts come in
/// order and never overlap; without a pause there is one, without a voice none.
std::vector<VoiceSpan> partsOf(const std::vector<VoiceSpan> &voice, double duration);

/// The `words` of a stretch, which were heard with their probabilities, listening for `phrases`.
/// Where the model isn't sure of them, or a part has no word, its `parts` are heard too, without
/// phrases, and the surer words are taken. A stretch with a phrase in it stays: a phrase may be
/// less probable than what it stands for. Throws what `hear` throws.
using Hear = std::function<QList<TimedWord>(VoiceSpan part)>;
QList<TimedWord> hearAgain(const QList<TimedWord> &words, const std::vector<VoiceSpan> &parts,
                           const QStringList &phrases, const Hear &hear);

/// The words of a hearing, but those of another one wherever what is said there is another thing
/// and more probable, or fills a second or more in which the first has nothing; no word goes
/// without another in its place. Both agree, to the mark and on where they stand, on the words
/// beside those that are taken, so that nothing between is lost and the marks and capitals are in
/// keeping.
QList<TimedWord> surerWords(const QList<TimedWord> &words, const QList<TimedWord> &others);

} // namespace lorvane
