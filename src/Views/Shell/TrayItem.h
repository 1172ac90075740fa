#pragma once

#include "Views/Shell/DictationAction.h"

#include <QColor>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>

namespace lorvane {

class AppStore;
class MainWindow;

/// The item in the desktop's panel, which keeps the application in reach while its window is
/// closed. Needs a QApplication. Main thread only.
class TrayItem : public QObject {
    Q_OBJECT
public:
    /// Shows the item, drawn in `color`, which has to stand out on light and dark panels alike.
    /// `store` and `window` outlive it.
    TrayItem(AppStore &store, MainWindow &window, const QColor &color, QObject *parent = nullptr);
    ~TrayItem() override;

    /// The menu that the item opens.
    QMenu &menu() { return menu_; }

    QIcon icon() const { return icon_.icon(); }

private:
    void refresh();

    AppStore &store_;
    const QColor color_;
    DictationAction toggle_;
    QMenu menu_;
    QAction *cancel_ = nullptr;
    QSystemTrayIcon icon_;
    bool showsRecording_ = false;
};

} // namespace lorvane
