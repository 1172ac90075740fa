#pragma once

#include <QList>
#include <QLocale>
#include <QStringList>

namespace lorvane {

/// The indices of the texts in the order in which a person of `locale` looks them up: by its
/// alphabet, numbers by their value, and capitals only where all else is equal. What is equal keeps
/// its order.
QList<qsizetype> localizedOrder(const QStringList &texts, const QLocale &locale = QLocale());

} // namespace lorvane
