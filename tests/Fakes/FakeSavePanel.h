#pragma once

#include "Platform/SavePanel.h"

#include <QStringList>

#include <functional>

namespace lorvane {

/// A save panel whose user answers at once.
class FakeSavePanel final : public SavePanel {
public:
    std::optional<QString> answer;   ///< the path to choose; absent: cancel
    std::function<void()> whileOpen; ///< what happens while the panel is up
    QStringList proposedFileNames;   ///< one for each time that the panel was shown

    std::optional<QString> run(const QString &proposedFileName) override {
        proposedFileNames.append(proposedFileName);
        if (whileOpen)
            whileOpen();
        return answer;
    }
};

} // namespace lorvane
