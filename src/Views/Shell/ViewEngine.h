#pragma once

#include <QQmlEngine>

namespace lorvane {

/// The QML engine that all windows share, with the module of the views, their icons and their
/// models. Main thread only.
class ViewEngine : public QQmlEngine {
    Q_OBJECT
public:
    explicit ViewEngine(QObject *parent = nullptr);
};

} // namespace lorvane
