#pragma once

#include <QStringList>

namespace lorvane {

/// The command that opens the desktop's own page for a privacy address, such as the one that ends
/// in "?Privacy_Microphone"; empty if the address is another or the desktop has no such page.
/// `desktop` is what XDG_CURRENT_DESKTOP says: names with colons between them.
QStringList settingsPageCommand(const QString &address, const QString &desktop);

} // namespace lorvane
