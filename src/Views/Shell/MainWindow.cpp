#include "Views/Shell/MainWindow.h"

#include "AppStore/AppStore.h"

#include <QGuiApplication>
#include <QQmlComponent>

namespace lorvane {

MainWindow::MainWindow(QQmlEngine &engine, AppStore &store, QObject *parent)
    : QObject(parent), engine_(engine), store_(store) {
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
}

void MainWindow::close() {
    if (window_)
        window_->close();
}

} // namespace lorvane
