#include "Platform/Linux/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace lorvane {

/// Of several monitors Qt doesn't know what panels have taken of each.
Screen QtScreens::screenOf(const QScreen &screen) {
    const QRect frame = screen.geometry();
    if (QGuiApplication::screens().size() == 1 || QGuiApplication::platformName() != u"xcb")
        return {frame, screen.availableGeometry()};
    if (!struts_)
        struts_.emplace();
    // A monitor's upper left corner is in the server's pixels, and all else relative to it.
    const qreal scale = screen.devicePixelRatio();
    const QRect monitor(frame.topLeft(), frame.size() * scale);
    const QRect part = DesktopStruts::freePart(monitor, struts_->read());
    const QRectF visible(frame.topLeft() + QPointF(part.topLeft() - frame.topLeft()) / scale,
                         QSizeF(part.size()) / scale);
    return {frame, visible.toRect()};
}

QList<Screen> QtScreens::screens() {
    QList<Screen> all;
    for (const QScreen *screen : QGuiApplication::screens())
        all.append(screenOf(*screen));
    return all;
}

std::optional<Screen> QtScreens::mainScreen() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? std::optional(screenOf(*screen)) : std::nullopt;
}

QPoint QtScreens::pointer() { return QCursor::pos(); }

} // namespace lorvane
