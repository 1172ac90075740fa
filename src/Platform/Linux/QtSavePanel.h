#pragma once

#include "Platform/SavePanel.h"

namespace lorvane {

/// The file dialog of the desktop that Qt finds itself on, or Qt's own. Needs a QApplication.
class QtSavePanel final : public SavePanel {
public:
    std::optional<QString> run(const QString &proposedFileName) override;
};

} // namespace lorvane
