#pragma once

#include <QDateTime>
#include <QString>

namespace lorvane {

/// An abbreviated date and a short time, as the user's locale writes them, in local time.
QString dateLabel(const QDateTime &date);

} // namespace lorvane
