#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QQuickWindow>

#include <memory>

namespace lorvane {

class AppStore;

/// The one main window. It can be closed and opened again; closing it ends nothing, provided that
/// the application doesn't quit with its last window. It opens when the store asks for the setup
/// guide. Main thread only.
class MainWindow : public QObject {
    Q_OBJECT
public:
    /// `engine` and `store` outlive the window.
    MainWindow(QQmlEngine &engine, AppStore &store, QObject *parent = nullptr);
    ~MainWindow() override;

    /// Opens the window on Home, or, if it is open, brings it to the front as it is.
    void open();
    void close();
    bool isOpen() const { return window_ && window_->isVisible(); }

private:
    void make();

    QQmlEngine &engine_;
    AppStore &store_;
    std::unique_ptr<QQuickWindow> window_;
};

} // namespace lorvane
