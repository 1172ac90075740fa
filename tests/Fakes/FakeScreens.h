#pragma once

#include "Platform/Screens.h"

namespace lorvane {

/// The monitors and the pointer as the test puts them: at first one monitor with a panel on top.
class FakeScreens final : public Screens {
public:
    QList<Screen> allScreens{{QRect(0, 0, 1280, 800), QRect(0, 30, 1280, 770)}};
    QPoint pointerPosition{640, 400};

    QList<Screen> screens() override { return allScreens; }
    std::optional<Screen> mainScreen() override {
        return allScreens.isEmpty() ? std::nullopt : std::optional(allScreens.first());
    }
    QPoint pointer() override { return pointerPosition; }
};

} // namespace lorvane
