#pragma once

#include "Core/DateLabel.h"

#include <QString>

namespace lorvane {

/// A number with the digit grouping of the user's locale.
QString groupedNumber(qint64 number);

} // namespace lorvane
