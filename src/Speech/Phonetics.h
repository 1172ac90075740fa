#pragma once

#include <QString>

#include <string>

namespace lorvane {

/// Roughly the sounds of a text, one character each, as an English reader would guess them from its
/// letters: enough to tell whether a misheard name could be a name of a list. Blanks and marks have
/// no sound.
std::u16string soundsOf(const QString &text);

/// How much two texts sound alike: from 0 to 1, which is the same. Sounds that are easily taken for
/// one another count as nearly the same.
double likeness(const std::u16string &sounds, const std::u16string &otherSounds);

} // namespace lorvane
