// A Qt Quick program with nothing in it: what it takes to start is what any of them takes.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

#include <memory>

int main(int argc, char **argv) {
    const QGuiApplication application(argc, argv);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\n"
                      "Window { title: 'Bare'; width: 1120; height: 760; visible: true\n"
                      "    Text { anchors.centerIn: parent; text: 'Nothing' } }",
                      {});
    const std::unique_ptr<QObject> window(component.create());
    if (!window)
        qFatal("%s", qPrintable(component.errorString()));
    return QGuiApplication::exec();
}
