#pragma once

#include "Platform/Pasteboard.h"

namespace lorvane {

/// The desktop's clipboard. What is put there is gone when this process ends, unless a clipboard
/// manager keeps it.
class QtPasteboard final : public Pasteboard {
public:
    void setText(const QString &text) override;
};

} // namespace lorvane
