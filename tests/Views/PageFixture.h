#pragma once

#include "Views/Shell/MainWindow.h"

#include "ViewFixture.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

#include <memory>

namespace lorvane {

/// The main window, open on a page, with keys that can be typed into it.
class PageFixture : public ViewFixture {
protected:
    std::unique_ptr<MainWindow> window;

    void SetUp() override {
        ViewFixture::SetUp();
        window = std::make_unique<MainWindow>(engine, *store);
    }
    void TearDown() override {
        window.reset();
        ViewFixture::TearDown();
    }

    void openPage(const QString &name) {
        window->open();
        ASSERT_TRUE(activate(name));
    }

    /// A saved dictation of an afternoon.
    static TranscriptRecord record(const QString &text, double duration = 3) {
        TranscriptRecord record;
        record.createdAt = QDateTime({2026, 3, 14}, {15, 9}, Qt::UTC);
        record.text = text;
        record.duration = duration;
        return record;
    }

    /// All that the page area shows, in the order of the screen reader.
    static QStringList pageNames() {
        const QStringList all = names();
        return all.mid(all.indexOf(u"Made for your train of thought."_qs) + 1);
    }

    /// The same with what is out of use marked as such.
    static QStringList page() {
        const QStringList all = shown(false);
        return all.mid(all.indexOf(u"Made for your train of thought."_qs) + 1);
    }

    /// What the sheet on the window shows; empty without one.
    static QStringList sheet() { return shown(true); }

    static QQuickWindow *focusWindow() {
        QCoreApplication::processEvents();
        return qobject_cast<QQuickWindow *>(QGuiApplication::focusWindow());
    }

    /// The name of what has the keyboard focus.
    static QString focusName() {
        const QQuickWindow *frame = focusWindow();
        QQuickItem *item = frame ? frame->activeFocusItem() : nullptr;
        QAccessibleInterface *seen = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        return seen ? seen->text(QAccessible::Name) : QString();
    }

    /// Types one key into the window that has the focus.
    static void type(Qt::Key key, QString text = {},
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        if (key == Qt::Key_Tab)
            text = u"\t"_qs;
        QQuickWindow *frame = focusWindow();
        ASSERT_NE(frame, nullptr);
        QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
        QCoreApplication::sendEvent(frame, &down);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers, text);
        QCoreApplication::sendEvent(frame, &up);
        QCoreApplication::processEvents();
    }

    /// Puts the focus on the field of that name and types over what is in it.
    static void typeInto(const QString &name, const QString &text, int skipped = 0) {
        QAccessibleInterface *seen = find(name, QAccessible::EditableText, skipped);
        ASSERT_NE(seen, nullptr) << name.toStdString();
        seen->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        type(Qt::Key_A, {}, Qt::ControlModifier);
        if (text.isEmpty())
            type(Qt::Key_Delete);
        else
            type(Qt::Key_unknown, text);
    }

    /// What the Tab key reaches, from the first of these names until it comes round to it again.
    static QStringList tabOrder(const QString &first) {
        constexpr int most = 60;
        for (int i = 0; i < most && focusName() != first; ++i)
            type(Qt::Key_Tab);
        QStringList order;
        for (int i = 0; i < most; ++i) {
            const QString name = focusName();
            if (!order.isEmpty() && name == first)
                break;
            order.append(name);
            type(Qt::Key_Tab);
        }
        return order;
    }

private:
    static QStringList shown(bool inSheet) {
        QStringList texts;
        visit([&](QAccessibleInterface *seen) {
            const auto *item = qobject_cast<QQuickItem *>(seen->object());
            const QString name = seen->text(QAccessible::Name);
            if (!item || name.isEmpty() ||
                inSheet != (item->window()->modality() == Qt::WindowModal))
                return;
            const bool isOut = seen->role() == QAccessible::Button && !item->isEnabled();
            texts.append(isOut ? name + u" (out)"_qs : name);
        });
        return texts;
    }
};

} // namespace lorvane
