#pragma once

#include "Platform/Linux/DesktopStruts.h"
#include "Platform/Screens.h"

#include <optional>

class QScreen;

namespace lorvane {

/// The monitors as Qt knows them.
class QtScreens final : public Screens {
public:
    QList<Screen> screens() override;
    std::optional<Screen> mainScreen() override;
    QPoint pointer() override;

private:
    Screen screenOf(const QScreen &screen);

    std::optional<DesktopStruts> struts_; ///< made when it is first needed
};

} // namespace lorvane
