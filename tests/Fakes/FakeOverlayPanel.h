#pragma once

#include "Platform/OverlayPanel.h"

#include <optional>

namespace lorvane {

/// A card that is only remembered.
class FakeOverlayPanel : public OverlayPanel {
public:
    QSize panelSize{350, 88};
    std::optional<QPoint> position; ///< absent until it has been placed
    bool visible = false;
    bool refusesFocus = true;
    int orderFrontCount = 0;
    int orderOutCount = 0;

    QSize size() const override { return panelSize; }
    bool isVisible() const override { return visible; }
    void setPosition(const QPoint &newPosition) override { position = newPosition; }
    void orderFront() override {
        visible = true;
        ++orderFrontCount;
    }
    void orderOut() override {
        visible = false;
        ++orderOutCount;
    }
    bool refusesKeyboardFocus() const override { return refusesFocus; }
};

} // namespace lorvane
