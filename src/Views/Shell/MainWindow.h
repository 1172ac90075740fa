#pragma once

#include "Views/Shell/DictationAction.h"

#include <QMenu>
#include <QObject>
#include <QQmlEngine>
#include <QQuickWindow>

#include <memory>

namespace lorvane {

class AppStore;

/// The one main window. It can be closed and opened again; closing it ends nothing, provided that
/// the application doesn't quit with its last window. It opens when the store asks for the setup
/// guide. The key F10 opens its menu. Main thread only.
class MainWindow : public QObject {
    Q_OBJECT
public:
    /// `engine` and `store` outlive the window.
    MainWindow(QQmlEngine &engine, AppStore &store, QObject *parent = nullptr);
    ~MainWindow() override;

    /// Opens the window on Home, or, if it is open, brings it to the front as it is.
    void open();
    void close();
    /// The window's own menu.
    QMenu &menu() { return menu_; }
    bool isOpen() const { return window_ && window_->isVisible(); }

Q_SIGNALS:
    /// A window that was opened has shown its first picture.
    void drawn();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void make();
    void openMenu();

    QQmlEngine &engine_;
    AppStore &store_;
    DictationAction toggle_;
    QMenu menu_;
    std::unique_ptr<QQuickWindow> window_;
};

} // namespace lorvane
