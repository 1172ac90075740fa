#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>

namespace lorvane {

/// The soft shadow of a rounded rectangle that fills `size` but for a margin of `blur` on each
/// side, with corners of `radius`; all in device pixels. Any thread.
QImage shadowImage(const QSize &size, double radius, double blur, const QColor &color);

/// Serves "image://shadow/<radius>/<blur>/<argb in hexadecimal>" to QML.
class ShadowProvider : public QQuickImageProvider {
public:
    ShadowProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace lorvane
