#pragma once

#include <QColor>
#include <QQmlEngine>

namespace lorvane {

/// The QML engine that all windows share, with the module of the views, their icons and their
/// models. Main thread only.
class ViewEngine : public QQmlEngine {
    Q_OBJECT
public:
    explicit ViewEngine(QObject *parent = nullptr);

    /// A colour of LorPalette by its name there, invalid if there is none.
    QColor paletteColor(const QByteArray &name);
};

} // namespace lorvane
