#include "Platform/Linux/PortalSavePanel.h"

#include "Platform/Linux/PortalDialog.h"

#include <utility>

namespace lorvane {

PortalSavePanel::PortalSavePanel(QDBusConnection bus, SavePanel &otherwise,
                                 std::chrono::milliseconds limit)
    : bus_(std::move(bus)), otherwise_(otherwise), limit_(limit) {}

std::optional<QString> PortalSavePanel::run(const QString &proposedFileName) {
    PortalDialog dialog(bus_);
    switch (dialog.ask(proposedFileName, limit_)) {
    case PortalDialog::Outcome::chosen: return dialog.chosenPath();
    case PortalDialog::Outcome::cancelled: return std::nullopt;
    case PortalDialog::Outcome::failed: break;
    }
    return otherwise_.run(proposedFileName);
}

} // namespace lorvane
