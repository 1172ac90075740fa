#pragma once

#include "Platform/Screens.h"

namespace lorvane {

/// The monitors as Qt knows them.
class QtScreens final : public Screens {
public:
    QList<Screen> screens() override;
    std::optional<Screen> mainScreen() override;
    QPoint pointer() override;
};

} // namespace lorvane
