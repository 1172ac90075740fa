#pragma once

#include "AppStore/StoreFixture.h"
#include "Core/Printing.h"
#include "Views/Shell/ViewEngine.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>
#include <QWindow>

#include <functional>

namespace lorvane {

/// Windows on a store of fakes, seen as assistive technology sees them. A warning of QML is a
/// failure.
class ViewFixture : public StoreFixture {
protected:
    ViewEngine engine;

    ViewFixture() {
        QObject::connect(&engine, &QQmlEngine::warnings, &engine,
                         [](const QList<QQmlError> &warnings) {
                             for (const QQmlError &warning : warnings)
                                 ADD_FAILURE() << warning.toString().toStdString();
                         });
    }

    /// All that can be seen in the windows of the program, in the order of the screen reader.
    static void visit(const std::function<void(QAccessibleInterface *)> &see) {
        QCoreApplication::processEvents();
        for (QWindow *window : QGuiApplication::topLevelWindows())
            if (auto *scene = qobject_cast<QQuickWindow *>(window))
                layOut(scene->contentItem());
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (QWindow *window : QGuiApplication::topLevelWindows())
            if (window->isVisible())
                visitBelow(QAccessible::queryAccessibleInterface(window), see);
    }

    static QStringList names() {
        QStringList names;
        visit([&](QAccessibleInterface *seen) {
            const QString name = seen->text(QAccessible::Name);
            if (!name.isEmpty())
                names.append(name);
        });
        return names;
    }

    static bool shows(const QString &name) { return names().contains(name); }

    /// What can be seen under this name, after `skipped` others of it; null if there is none.
    static QAccessibleInterface *
    find(const QString &name, QAccessible::Role role = QAccessible::NoRole, int skipped = 0) {
        QAccessibleInterface *found = nullptr;
        visit([&](QAccessibleInterface *seen) {
            if (!found && seen->text(QAccessible::Name) == name &&
                (role == QAccessible::NoRole || seen->role() == role) && skipped-- == 0)
                found = seen;
        });
        return found;
    }

    static QAccessibleInterface *button(const QString &name) {
        return find(name, QAccessible::Button);
    }

    /// Qt 6.4 doesn't tell assistive technology, so the control itself is asked.
    static bool isEnabled(const QString &name, QAccessible::Role role = QAccessible::Button) {
        QAccessibleInterface *seen = find(name, role);
        return seen && seen->object()->property("enabled").toBool();
    }

    /// Presses a button as a screen reader does; false if it isn't there.
    static bool activate(const QString &name, QAccessible::Role role = QAccessible::Button,
                         int skipped = 0) {
        QAccessibleInterface *seen = find(name, role, skipped);
        if (!seen || !seen->actionInterface())
            return false;
        seen->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCoreApplication::processEvents();
        return true;
    }

private:
    /// Lists are laid out by the next frame, for which nothing here waits.
    static void layOut(QQuickItem *item) {
        if (item->inherits("QQuickItemView"))
            QMetaObject::invokeMethod(item, "forceLayout");
        for (QQuickItem *child : item->childItems())
            layOut(child);
    }

    static void visitBelow(QAccessibleInterface *parent,
                           const std::function<void(QAccessibleInterface *)> &see) {
        for (int i = 0; parent && i < parent->childCount(); ++i) {
            QAccessibleInterface *child = parent->child(i);
            if (!child || child->state().invisible)
                continue;
            see(child);
            visitBelow(child, see);
        }
    }
};

} // namespace lorvane
