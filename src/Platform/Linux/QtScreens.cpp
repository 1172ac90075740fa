#include "Platform/Linux/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace lorvane {
namespace {

Screen screenOf(const QScreen &screen) { return {screen.geometry(), screen.availableGeometry()}; }

} // namespace

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
