#pragma once

#include "Platform/OverlayPanel.h"

#include <QTimer>

#include <memory>

class QQmlEngine;
class QQuickView;

namespace lorvane {

class Meter;

/// The card as a window: above all others, on every workspace, transparent to the mouse, and out
/// of reach of the keyboard focus. Main thread only.
class OverlayWindow : public OverlayPanel {
public:
    /// `engine` outlives the window.
    explicit OverlayWindow(QQmlEngine &engine);
    ~OverlayWindow() override;

    /// Tells what the card draws, and makes the window ahead of its first use, so that it then
    /// appears at once. The window goes when `meter` does.
    void setMeter(Meter &meter);

    QSize size() const override;
    bool isVisible() const override;
    void setPosition(const QPoint &position) override;
    void orderFront() override;
    void orderOut() override;
    /// True while there is no window.
    bool refusesKeyboardFocus() const override;

private:
    void cutCorners();

    QQmlEngine &engine_;
    QTimer staysInFront_;
    std::unique_ptr<QQuickView> view_;
};

} // namespace lorvane
