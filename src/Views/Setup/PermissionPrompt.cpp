#include "Views/Setup/PermissionPrompt.h"

#include <QQmlComponent>
#include <QQuickWindow>

namespace lorvane {

Async<bool> PermissionPrompt::ask(QString question) {
    auto show = [this, &question](Continuation<bool> asker) {
        auto *text = new PermissionQuestion(question, std::move(asker));
        QQmlComponent component(&engine_,
                                QUrl(u"qrc:/qt/qml/Lorvane/Setup/PermissionWindow.qml"_qs));
        auto *window = qobject_cast<QQuickWindow *>(component.createWithInitialProperties(
            {{u"question"_qs, QVariant::fromValue<QObject *>(text)}}));
        if (!window)
            qFatal("The prompt can't be made: %s", qPrintable(component.errorString()));
        text->setParent(window);
        QObject::connect(window, &QWindow::visibleChanged, window, [window](bool visible) {
            if (!visible)
                window->deleteLater();
        });
        window->show();
        window->raise();
        window->requestActivate();
    };
    co_return co_await suspend<bool>(clock_, std::move(show));
}

} // namespace lorvane
