#pragma once

#include <QPoint>
#include <QSize>

namespace lorvane {

/// The window of the floating card. It is made when it is first shown, draws what the overlay's
/// meter holds, and never takes the keyboard focus. Main thread only.
class OverlayPanel {
public:
    OverlayPanel() = default;
    OverlayPanel(const OverlayPanel &) = delete;
    OverlayPanel &operator=(const OverlayPanel &) = delete;
    virtual ~OverlayPanel() = default;

    virtual QSize size() const = 0;
    virtual bool isVisible() const = 0;
    /// Moves the upper left corner, in logical pixels of the whole desktop.
    virtual void setPosition(const QPoint &position) = 0;
    /// Shows the window above all others without activating the program.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
    /// Whether the window, as the platform has it, can't take the keyboard focus.
    virtual bool refusesKeyboardFocus() const = 0;
};

} // namespace lorvane
