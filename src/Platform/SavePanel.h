#pragma once

#include <QString>

#include <optional>

namespace lorvane {

/// The desktop's dialog that asks where to save a plain text file. Main thread only.
class SavePanel {
public:
    SavePanel() = default;
    SavePanel(const SavePanel &) = delete;
    SavePanel &operator=(const SavePanel &) = delete;
    virtual ~SavePanel() = default;

    /// Runs the modal dialog, in which the user can also make folders, and returns the path that
    /// was chosen; nothing when the dialog was cancelled. The user has agreed to replace what is
    /// there. Blocks the caller but not the program: its other work goes on meanwhile.
    virtual std::optional<QString> run(const QString &proposedFileName) = 0;
};

} // namespace lorvane
