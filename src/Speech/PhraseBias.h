#pragma once

#include "Speech/Decoding.h"

#include <QStringList>

namespace lorvane {

/// Writes down what was heard, listening for phrases, which come out as they are spelt: what is
/// most probable without them, but where a phrase may stand instead because it is nearly as
/// probable and sounds like what would stand there, the most probable text with it. The same as
/// decodeWithBeam() where no phrase makes a difference. Throws LocalizedError, and Abandoned once
/// `stop` is asked for.
Decoding decodeWithPhrases(Hearing &hearing, const QStringList &phrases, const TokenTable &tokens,
                           const std::stop_token &stop);

} // namespace lorvane
