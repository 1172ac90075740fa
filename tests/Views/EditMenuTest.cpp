#include "PageFixture.h"

#include <QClipboard>
#include <QMouseEvent>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

/// The menu that a right click on a text opens.
class EditMenuTest : public PageFixture {
protected:
    void SetUp() override {
        PageFixture::SetUp();
        store->setHistory({record(u"a saved dictation"_qs)});
        QGuiApplication::clipboard()->setText(u"copied"_qs);
    }

    static QStringList entries(bool onlyEnabled) {
        QStringList found;
        visit([&](QAccessibleInterface *seen) {
            if (seen->role() == QAccessible::MenuItem &&
                (!onlyEnabled || seen->object()->property("enabled").toBool()))
                found.append(seen->text(QAccessible::Name));
        });
        return found;
    }

    static void choose(const QString &entry) {
        ASSERT_TRUE(activate(entry, QAccessible::MenuItem)) << entry.toStdString();
    }

    static void rightClick(const QString &name) {
        const auto *item = qobject_cast<QQuickItem *>(find(name)->object());
        QQuickWindow *frame = item->window();
        const QPointF place = item->mapToScene({5, 5});
        for (const auto kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool isDown = kind == QEvent::MouseButtonPress;
            QMouseEvent event(kind, place, frame->mapToGlobal(place), Qt::RightButton,
                              isDown ? Qt::RightButton : Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(frame, &event);
        }
        QCoreApplication::processEvents();
    }

    static QString textOf(const QString &field) {
        return find(field, QAccessible::EditableText)->object()->property("text").toString();
    }
};

TEST_F(EditMenuTest, AFieldIsEditedByIt) {
    const QString search = u"Search your dictations"_qs;
    openPage(u"History"_qs);
    typeInto(search, {});
    rightClick(search);
    EXPECT_EQ(entries(false), (QStringList{u"Cut"_qs, u"Copy"_qs, u"Paste"_qs, u"Select all"_qs}));
    EXPECT_EQ(entries(true), QStringList{u"Paste"_qs});
    choose(u"Paste"_qs);
    EXPECT_EQ(textOf(search), u"copied"_qs);
    EXPECT_EQ(entries(false), QStringList());
    EXPECT_EQ(focusName(), search);

    typeInto(search, u"saved"_qs);
    rightClick(search);
    choose(u"Select all"_qs);
    rightClick(search);
    EXPECT_EQ(entries(true), entries(false)) << "what was selected still is";
    choose(u"Cut"_qs);
    EXPECT_EQ(textOf(search), QString());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"saved"_qs);
}

TEST_F(EditMenuTest, WhatIsOnlyReadIsCopiedByIt) {
    openPage(u"History"_qs);
    rightClick(u"a saved dictation"_qs);
    EXPECT_EQ(entries(false), (QStringList{u"Copy"_qs, u"Select all"_qs}));
    EXPECT_EQ(entries(true), QStringList{u"Select all"_qs});
    choose(u"Select all"_qs);
    rightClick(u"a saved dictation"_qs);
    choose(u"Copy"_qs);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"a saved dictation"_qs);
}

TEST_F(EditMenuTest, TheKeysOfMenusOpenItAndEscapeClosesItAlone) {
    openPage(u"Snippets"_qs);
    ASSERT_TRUE(activate(u"New snippet"_qs));
    for (const QString &field : {u"Snippet trigger"_qs, u"Snippet text"_qs}) {
        typeInto(field, u"some words"_qs);
        for (const auto &[key, modifiers] :
             {std::pair(Qt::Key_Menu, Qt::NoModifier), std::pair(Qt::Key_F10, Qt::ShiftModifier)}) {
            SCOPED_TRACE(key);
            type(key, {}, modifiers);
            EXPECT_EQ(entries(false).size(), 4);
            type(Qt::Key_Escape);
            EXPECT_EQ(entries(false), QStringList());
            EXPECT_EQ(focusName(), field);
        }
        type(Qt::Key_Menu);
        for (int i = 0; i < 4; ++i)
            type(Qt::Key_Down);
        type(Qt::Key_Return);
        EXPECT_EQ(find(field, QAccessible::EditableText)->object()->property("selectedText"),
                  u"some words"_qs);
    }
}

TEST_F(EditMenuTest, IsAsWideAsItsWidestEntry) {
    openPage(u"Scratchpad"_qs);
    rightClick(u"Scratchpad text"_qs);
    visit([](QAccessibleInterface *seen) {
        const auto *item = qobject_cast<QQuickItem *>(seen->object());
        if (seen->role() == QAccessible::MenuItem) {
            EXPECT_GE(item->width(), item->implicitWidth());
        }
    });
    EXPECT_EQ(entries(false).size(), 4);
}

} // namespace
} // namespace lorvane
