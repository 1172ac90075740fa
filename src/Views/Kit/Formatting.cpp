#include "Views/Kit/Formatting.h"

#include <QLocale>

namespace lorvane {

QString groupedNumber(qint64 number) { return QLocale().toString(number); }

} // namespace lorvane
