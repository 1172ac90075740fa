#pragma once

#include "Core/DateLabel.h"
#include "Core/Models.h"

#include <QString>

namespace lorvane {

/// A number with the digit grouping of the user's locale.
QString groupedNumber(qint64 number);

/// How many words a dictation has; the unit is always the plural.
QString wordsLabel(const TranscriptRecord &record);

} // namespace lorvane
