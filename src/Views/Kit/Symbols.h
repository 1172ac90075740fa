#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>
#include <QStringList>

namespace lorvane {

/// The icons of the window, under the names that the design gives them. Any thread.
namespace Symbols {

/// All names that have an image.
QStringList names();

/// The icon scaled into `size` (device pixels) and drawn in one colour; null for an unknown name.
QImage image(const QString &name, const QColor &color, const QSize &size);

/// The same in the sizes that panels and menus ask for.
QIcon icon(const QString &name, const QColor &color);

/// The application's own icon.
QIcon appIcon();

} // namespace Symbols

/// Serves "image://symbol/<name>/<argb in hexadecimal>" to QML.
class SymbolProvider : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace lorvane
