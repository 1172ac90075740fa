#pragma once

#include <QString>

namespace lorvane {

/// The folder for the user's data ($XDG_DATA_HOME, by default ~/.local/share), without a slash at
/// its end. It is created when missing; throws FileError when that fails.
QString applicationSupportDirectory();

} // namespace lorvane
