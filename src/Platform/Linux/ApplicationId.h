#pragma once

#include <QString>

namespace lorvane {

/// The name of this application on the desktop: of its desktop entry, its windows and its grants.
inline const QString applicationId = QStringLiteral("net.lorvane.Lorvane");

} // namespace lorvane
