#include "Views/Kit/Shadow.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lorvane {

namespace {

/// How far a point is outside a rounded rectangle around the origin; negative inside.
double distanceToRoundedRect(double x, double y, double halfWidth, double halfHeight,
                             double radius) {
    const double dx = std::abs(x) - halfWidth + radius;
    const double dy = std::abs(y) - halfHeight + radius;
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
           radius;
}

} // namespace

QImage shadowImage(const QSize &size, double radius, double blur, const QColor &color) {
    QImage image(size, QImage::Format_ARGB32);
    const double centerX = size.width() / 2.0;
    const double centerY = size.height() / 2.0;
    // A blur reaches two standard deviations to each side of the edge.
    const double spread = blur / 2 * std::numbers::sqrt2;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const double distance = distanceToRoundedRect(x + 0.5 - centerX, y + 0.5 - centerY,
                                                          centerX - blur, centerY - blur, radius);
            QColor pixel = color;
            pixel.setAlphaF(color.alphaF() *
                            static_cast<float>(0.5 * std::erfc(distance / spread)));
            image.setPixelColor(x, y, pixel);
        }
    }
    return image;
}

QImage ShadowProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize) {
    const QStringList parts = id.split(u'/');
    const QImage image = shadowImage(requestedSize, parts.value(0).toDouble(),
                                     parts.value(1).toDouble(), QColor(u"#"_qs + parts.value(2)));
    if (size)
        *size = image.size();
    return image;
}

} // namespace lorvane
