#pragma once

#include "Platform/SavePanel.h"

#include <QDBusConnection>

#include <chrono>

namespace lorvane {

/// The file dialog of the desktop's portal: the desktop's own, whatever a program is made with.
/// Where no portal has one, or it fails, another panel asks. Needs a QApplication.
class PortalSavePanel final : public SavePanel {
public:
    /// `otherwise` outlives this. A portal may have to be started first; one that doesn't take the
    /// question within `limit` is left alone.
    PortalSavePanel(QDBusConnection bus, SavePanel &otherwise,
                    std::chrono::milliseconds limit = std::chrono::seconds(3));

    std::optional<QString> run(const QString &proposedFileName) override;

private:
    QDBusConnection bus_;
    SavePanel &otherwise_;
    std::chrono::milliseconds limit_;
};

} // namespace lorvane
