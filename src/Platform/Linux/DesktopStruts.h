#pragma once

#include <QList>
#include <QRect>

#include <memory>

namespace lorvane {

class X11Connection;

/// What panels and docks have reserved of an X11 desktop, in the server's pixels: a rectangle at
/// one of its edges for each. Main thread only.
class DesktopStruts {
public:
    DesktopStruts();
    ~DesktopStruts();

    /// Asks all windows, within a tenth of a second; empty without an answer.
    QList<QRect> read();

    /// What they leave of a monitor of a desktop of that size.
    static QRect freePart(const QRect &monitor, const QList<QRect> &struts);

private:
    std::unique_ptr<X11Connection> connection_;
};

} // namespace lorvane
