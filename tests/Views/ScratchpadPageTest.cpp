#include "Views/Settings/ScratchpadModel.h"

#include "PageFixture.h"

#include <QFile>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

class ScratchpadPageTest : public PageFixture {
protected:
    void open() { openPage(u"Scratchpad"_qs); }

    static QString editorText() {
        QAccessibleInterface *editor = find(u"Scratchpad text"_qs, QAccessible::EditableText);
        return editor ? editor->text(QAccessible::Value) : QString();
    }

    /// The placeholder isn't there for assistive technology, so the scene is asked.
    static bool showsPlaceholder() {
        const QQuickWindow *frame = focusWindow();
        return frame && frame->contentItem() && findText(frame->contentItem(), placeholder);
    }

    static bool findText(const QQuickItem *item, const QString &text) {
        if (item->isVisible() && item->property("text").toString() == text)
            return true;
        const QList<QQuickItem *> children = item->childItems();
        return std::any_of(children.begin(), children.end(),
                           [&](const QQuickItem *child) { return findText(child, text); });
    }

    inline static const QString placeholder =
        u"Start anywhere. A note, a draft, a passing thought…"_qs;
};

TEST_F(ScratchpadPageTest, TheWordsAreCountedWithTheirUnit) {
    ScratchpadModel pad;
    EXPECT_EQ(pad.wordCount(), u"0 words"_qs);
    pad.setStore(store.get());
    const QList<std::pair<QString, QString>> rows{
        {QString(), u"0 words"_qs},
        {u" \n "_qs, u"0 words"_qs},
        {u"single"_qs, u"1 word"_qs},
        {u"three  little\nwords"_qs, u"3 words"_qs},
        {u"a\u3000b\u00a0c"_qs, u"3 words"_qs},
    };
    for (const auto &[text, label] : rows) {
        pad.setText(text);
        EXPECT_EQ(pad.wordCount(), label) << text.toStdString();
    }
}

TEST_F(ScratchpadPageTest, AnEmptyPadInvitesToWrite) {
    open();
    EXPECT_EQ(
        pageNames(),
        (QStringList{u"A LITTLE ROOM TO THINK"_qs, u"Scratchpad"_qs,
                     u"A quiet place to gather your words. Saved automatically on this Mac."_qs,
                     u"0 words"_qs, u"Copy all"_qs, u"Clear…"_qs, u"Scratchpad text"_qs,
                     u"Copy a dictation from History and paste it here to keep working."_qs}));
    EXPECT_FALSE(isEnabled(u"Copy all"_qs));
    EXPECT_FALSE(isEnabled(u"Clear…"_qs));
    EXPECT_TRUE(showsPlaceholder());
    EXPECT_FALSE(activate(u"Clear…"_qs) && shows(u"Clear your scratchpad?"_qs));
}

TEST_F(ScratchpadPageTest, BlanksAreATextOfNoWords) {
    store->setScratchpad(u"  "_qs);
    open();
    EXPECT_TRUE(shows(u"0 words"_qs));
    EXPECT_TRUE(isEnabled(u"Copy all"_qs));
    EXPECT_TRUE(isEnabled(u"Clear…"_qs));
    EXPECT_FALSE(showsPlaceholder());
}

TEST_F(ScratchpadPageTest, EachKeystrokeReachesTheStoreAndThenTheDisk) {
    open();
    find(u"Scratchpad text"_qs)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(focusName(), u"Scratchpad text"_qs);
    type(Qt::Key_H, u"h"_qs);
    EXPECT_EQ(store->scratchpad(), u"h"_qs);
    EXPECT_FALSE(showsPlaceholder());
    EXPECT_TRUE(shows(u"1 word"_qs));
    type(Qt::Key_Return, u"\r"_qs);
    type(Qt::Key_I, u"i"_qs);
    EXPECT_EQ(store->scratchpad(), u"h\ni"_qs);
    EXPECT_TRUE(shows(u"2 words"_qs));

    clock().advance(250ms);
    QFile library(ports.libraryPath());
    ASSERT_TRUE(library.open(QFile::ReadOnly));
    EXPECT_TRUE(library.readAll().contains(R"("scratchpad" : "h\ni")"));
}

TEST_F(ScratchpadPageTest, AStoredTextIsShownAndKeptAsItIs) {
    const QString text = u"« mot »\u00a0!\n日本語 👩‍👩‍👧\r\nlast"_qs;
    store->setScratchpad(text);
    int changes = 0;
    QObject::connect(store.get(), &AppStore::scratchpadChanged, [&] { ++changes; });
    open();
    EXPECT_EQ(editorText(), u"« mot » !\n日本語 👩‍👩‍👧\nlast"_qs);
    EXPECT_EQ(store->scratchpad(), text);
    EXPECT_EQ(changes, 0);

    find(u"Scratchpad text"_qs)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Home, {}, Qt::ControlModifier);
    type(Qt::Key_X, u"x"_qs);
    EXPECT_TRUE(store->scratchpad().startsWith(u"x« mot »\u00a0!"_qs))
        << "the blank stays what it is";
}

TEST_F(ScratchpadPageTest, CopyAllPutsTheWholeTextOnThePasteboard) {
    store->setScratchpad(u" one\ntwo "_qs);
    open();
    ASSERT_TRUE(activate(u"Copy all"_qs));
    EXPECT_EQ(ports.pasteboard.text, u" one\ntwo "_qs);
    EXPECT_TRUE(shows(u"Copied to clipboard."_qs));
}

TEST_F(ScratchpadPageTest, ClearingAsksAndCancelKeepsTheText) {
    store->setScratchpad(u"text"_qs);
    open();
    ASSERT_TRUE(activate(u"Clear…"_qs));
    const QStringList seen = names();
    for (const QString &text : {u"Clear your scratchpad?"_qs,
                                u"This removes the scratchpad text. This can’t be undone."_qs})
        EXPECT_TRUE(seen.contains(text)) << text.toStdString();
    EXPECT_LT(seen.indexOf(u"Clear scratchpad"_qs), seen.indexOf(u"Cancel"_qs));
    ASSERT_TRUE(activate(u"Cancel"_qs));
    EXPECT_EQ(store->scratchpad(), u"text"_qs);
    EXPECT_FALSE(shows(u"Clear your scratchpad?"_qs));

    ASSERT_TRUE(activate(u"Clear…"_qs));
    type(Qt::Key_Escape);
    EXPECT_EQ(store->scratchpad(), u"text"_qs);
    EXPECT_FALSE(shows(u"Clear your scratchpad?"_qs));
}

TEST_F(ScratchpadPageTest, AConfirmedClearingEmptiesThePadAndTheLibrary) {
    store->setScratchpad(u"text"_qs);
    open();
    ASSERT_TRUE(activate(u"Clear…"_qs));
    EXPECT_EQ(focusName(), u"Cancel"_qs);
    ASSERT_TRUE(activate(u"Clear scratchpad"_qs));
    EXPECT_EQ(store->scratchpad(), QString());
    EXPECT_EQ(editorText(), QString());
    EXPECT_FALSE(shows(u"Clear your scratchpad?"_qs));
    EXPECT_FALSE(isEnabled(u"Clear…"_qs));
    clock().advance(250ms);
    QFile library(ports.libraryPath());
    ASSERT_TRUE(library.open(QFile::ReadOnly));
    EXPECT_TRUE(library.readAll().contains(R"("scratchpad" : "")"));
}

TEST_F(ScratchpadPageTest, TheTabKeyGoesThroughAllControlsAndLeavesTheEditor) {
    store->setScratchpad(u"text"_qs);
    open();
    const QStringList order = tabOrder(u"Copy all"_qs);
    EXPECT_EQ(order.mid(0, 3), (QStringList{u"Copy all"_qs, u"Clear…"_qs, u"Scratchpad text"_qs}));
    EXPECT_TRUE(order.contains(u"Home"_qs));
    EXPECT_FALSE(order.contains(QString()));
    EXPECT_EQ(store->scratchpad(), u"text"_qs) << "no tab has been typed";
}

} // namespace
} // namespace lorvane
