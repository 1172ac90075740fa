#pragma once

#include <QDateTime>
#include <QString>

namespace lorvane {

/// A number with the digit grouping of the user's locale.
QString groupedNumber(qint64 number);

/// An abbreviated date and a short time, as the user's locale writes them, in local time.
QString dateLabel(const QDateTime &date);

} // namespace lorvane
