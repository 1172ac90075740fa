#include "Views/Shell/MainWindow.h"

#include "AppStore/AppStore.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlComponent>

namespace lorvane {

MainWindow::MainWindow(QQmlEngine &engine, AppStore &store, QObject *parent)
    : QObject(parent), engine_(engine), store_(store), toggle_(store) {
    menu_.addAction(&toggle_);
    connect(&store_, &AppStore::setupRequested, this, &MainWindow::open);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive && isOpen())
                    store_.refreshPermissions();
            });
}

MainWindow::~MainWindow() = default;

void MainWindow::open() {
    // A window that was closed starts afresh.
    if (!isOpen())
        make();
    if (!window_)
        return;
    window_->show();
    window_->raise();
    window_->requestActivate();
}

void MainWindow::make() {
    window_.reset();
    QQmlComponent component(&engine_, QUrl(u"qrc:/qt/qml/Lorvane/Shell/Main.qml"_qs));
    QObject *object =
        component.createWithInitialProperties({{u"store"_qs, QVariant::fromValue(&store_)}});
    window_.reset(qobject_cast<QQuickWindow *>(object));
    if (!window_)
        qFatal("The main window can't be made: %s", qPrintable(component.errorString()));
    window_->installEventFilter(this);
    const auto once =
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection);
    connect(window_.get(), &QQuickWindow::frameSwapped, this, &MainWindow::drawn, once);
}

// Ahead of whatever has the focus in the window.
bool MainWindow::eventFilter(QObject *object, QEvent *event) {
    if (object != window_.get() || event->type() != QEvent::KeyPress)
        return false;
    const auto &key = static_cast<QKeyEvent &>(*event);
    if (key.key() != Qt::Key_F10 || key.modifiers() != Qt::NoModifier)
        return false;
    openMenu();
    return true;
}

void MainWindow::openMenu() {
    // A native window of its own, which the desktop keeps above the main one.
    menu_.winId();
    menu_.windowHandle()->setTransientParent(window_.get());
    menu_.popup(window_->mapToGlobal(QPoint(0, 0)));
    menu_.setActiveAction(&toggle_);
}

void MainWindow::close() {
    if (window_)
        window_->close();
}

} // namespace lorvane
