#include "PageFixture.h"
#include "Views/Kit/Formatting.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

class HistoryPageTest : public PageFixture {
protected:
    void open(const QStringList &texts) {
        QList<TranscriptRecord> history;
        for (const QString &text : texts)
            history.append(record(text));
        store->setHistory(history);
        openPage(u"History"_qs);
    }

    void search(const QString &text) { typeInto(u"Search your dictations"_qs, text); }

    /// The texts of the cards, top to bottom.
    QStringList cards() {
        QStringList texts;
        for (const QString &name : names())
            for (const TranscriptRecord &record : store->history())
                if (record.text == name)
                    texts.append(name);
        return texts;
    }
};

TEST_F(HistoryPageTest, WithoutRecordsItTellsHowTheyCome) {
    open({});
    EXPECT_EQ(
        page(),
        (QStringList{
            u"A PLACE FOR EVERY THOUGHT"_qs, u"History"_qs,
            u"Find, copy, and revisit the words you’ve captured."_qs, u"Search your dictations"_qs,
            u"Export (out)"_qs, u"History options"_qs, u"A fresh start."_qs,
            u"Completed dictations are saved here automatically. Start from Home or use Control Option Space."_qs}));
    ASSERT_TRUE(activate(u"History options"_qs));
    EXPECT_FALSE(isEnabled(u"Delete all history…"_qs, QAccessible::MenuItem));
    activate(u"Delete all history…"_qs, QAccessible::MenuItem);
    EXPECT_TRUE(sheet().isEmpty());
}

TEST_F(HistoryPageTest, EachRecordIsACardWithItsFigures) {
    store->setHistory({record(u"one"_qs, 95.7), record(u"and two words"_qs, 0.4)});
    openPage(u"History"_qs);
    const QStringList seen = page();
    const QString date = dateLabel(store->history().first().createdAt);
    EXPECT_EQ(QString(date).replace(QChar(0x202F), u' '), u"Mar 14, 2026, 3:09 PM"_qs);
    EXPECT_EQ(seen.mid(6),
              (QStringList{u"2 dictations"_qs, date, u"·"_qs, u"1 words"_qs, u"·"_qs, u"95s"_qs,
                           u"Copy dictation"_qs, u"Delete dictation"_qs, u"one"_qs, date, u"·"_qs,
                           u"3 words"_qs, u"·"_qs, u"0s"_qs, u"Copy dictation"_qs,
                           u"Delete dictation"_qs, u"and two words"_qs}));
    EXPECT_TRUE(isEnabled(u"Export"_qs));
}

TEST_F(HistoryPageTest, ASearchKeepsTheOrderAndCountsTheMatches) {
    open({u"newest report"_qs, u"nothing"_qs, u"oldest REPORT"_qs});
    search(u"Report"_qs);
    EXPECT_EQ(cards(), (QStringList{u"newest report"_qs, u"oldest REPORT"_qs}));
    EXPECT_TRUE(shows(u"2 dictations"_qs));
    search(u"oldest"_qs);
    EXPECT_TRUE(shows(u"1 dictation"_qs));
    search(u" "_qs);
    EXPECT_EQ(cards().size(), 2) << "not trimmed";
    ASSERT_TRUE(activate(u"Clear search"_qs));
    EXPECT_EQ(cards().size(), 3);
    EXPECT_FALSE(shows(u"Clear search"_qs)) << "absent without a search";
    search(u"oldest"_qs);
    type(Qt::Key_Escape);
    EXPECT_EQ(cards().size(), 3);
}

TEST_F(HistoryPageTest, ASearchWithoutMatchesSaysSoAndLeavesTheExport) {
    open({u"something"_qs});
    search(u"else"_qs);
    EXPECT_EQ(
        page().mid(3),
        (QStringList{u"Search your dictations"_qs, u"Clear search"_qs, u"Export"_qs,
                     u"History options"_qs, u"No matching thoughts."_qs,
                     u"Try a different word or clear the search to see every dictation."_qs}));
    EXPECT_TRUE(isEnabled(u"Export"_qs));
}

TEST_F(HistoryPageTest, ARecordIsCopiedAndDeletedAtOnce) {
    open({u"first"_qs, u"second"_qs, u"third"_qs});
    ASSERT_TRUE(activate(u"Copy dictation"_qs, QAccessible::Button, 1));
    EXPECT_EQ(ports.pasteboard.text, u"second"_qs);
    ASSERT_TRUE(activate(u"Delete dictation"_qs, QAccessible::Button, 1));
    EXPECT_EQ(cards(), (QStringList{u"first"_qs, u"third"_qs}));
    EXPECT_EQ(store->historyCount(), 2);
}

TEST_F(HistoryPageTest, AfterTheLastMatchIsDeletedTheSearchStays) {
    open({u"first"_qs, u"second"_qs});
    search(u"second"_qs);
    ASSERT_TRUE(activate(u"Delete dictation"_qs));
    EXPECT_TRUE(shows(u"No matching thoughts."_qs));
    EXPECT_EQ(find(u"Search your dictations"_qs)->text(QAccessible::Value), u"second"_qs);
}

TEST_F(HistoryPageTest, TheSearchIsGoneAfterTheNextPage) {
    open({u"first"_qs, u"second"_qs});
    search(u"second"_qs);
    openPage(u"Home"_qs);
    openPage(u"History"_qs);
    EXPECT_EQ(cards().size(), 2);
}

TEST_F(HistoryPageTest, ANewDictationComesOnTopAndKeepsTheSearch) {
    open({u"old report"_qs});
    search(u"report"_qs);
    dictate(u"a new report"_qs);
    EXPECT_EQ(cards(), (QStringList{u"A new report."_qs, u"old report"_qs}));
}

TEST_F(HistoryPageTest, AllIsDeletedOnlyAfterAQuestion) {
    open({u"first"_qs, u"second"_qs});
    const auto ask = [] {
        ASSERT_TRUE(activate(u"History options"_qs));
        ASSERT_TRUE(activate(u"Delete all history…"_qs, QAccessible::MenuItem));
        EXPECT_EQ(sheet(),
                  (QStringList{
                      u"Delete all dictation history?"_qs, u"Delete all dictation history?"_qs,
                      u"This removes all saved dictations from Lorvane. This can’t be undone."_qs,
                      u"Delete all history"_qs, u"Cancel"_qs}));
    };
    ask();
    ASSERT_TRUE(activate(u"Cancel"_qs));
    EXPECT_EQ(store->historyCount(), 2);
    EXPECT_FALSE(shows(u"Delete all dictation history?"_qs));

    ask();
    type(Qt::Key_Escape);
    EXPECT_EQ(store->historyCount(), 2);
    EXPECT_FALSE(shows(u"Delete all dictation history?"_qs));

    ask();
    ASSERT_TRUE(activate(u"Delete all history"_qs));
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_TRUE(shows(u"A fresh start."_qs));
}

TEST_F(HistoryPageTest, TabGoesThroughAllCardsInTheirOrderAndBack) {
    QStringList texts;
    for (int i = 0; i < 25; ++i)
        texts.append(u"dictation number %1"_qs.arg(i));
    open(texts);
    typeInto(u"Search your dictations"_qs, {});
    QStringList forth;
    for (int i = 0; i < 2 + 3 * 25; ++i) {
        type(Qt::Key_Tab);
        QCoreApplication::processEvents();
        names(); // lays the list out, as the next frame does
        forth.append(focusName());
    }
    EXPECT_EQ(forth.first(2), (QStringList{u"Export"_qs, u"History options"_qs}));
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(forth.mid(2 + 3 * i, 3),
                  (QStringList{u"Copy dictation"_qs, u"Delete dictation"_qs, texts[i]}));
    type(Qt::Key_Tab);
    EXPECT_EQ(focusName(), u"Home"_qs) << "it isn't trapped";
    type(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    for (int i = 24; i >= 0; --i) {
        EXPECT_EQ(focusName(), texts[i]);
        for (int step = 0; step < 3; ++step) {
            type(Qt::Key_Backtab, {}, Qt::ShiftModifier);
            names();
        }
    }
    EXPECT_EQ(focusName(), u"History options"_qs);
}

TEST_F(HistoryPageTest, NoMoreCardsAreBuiltThanCanBeSeen) {
    open(QStringList(1000, u"one of many"_qs));
    ASSERT_TRUE(shows(u"1000 dictations"_qs));
    QQuickItem *card = qobject_cast<QQuickItem *>(find(u"Copy dictation"_qs)->object());
    while (!QByteArray(card->metaObject()->className()).startsWith("HistoryCard"))
        card = card->parentItem();
    QQuickItem *list = card->parentItem()->parentItem();
    for (int i = 0; i < 50; ++i) {
        list->setProperty("contentY", list->property("contentY").toDouble() + 333);
        names();
        EXPECT_LE(card->parentItem()->childItems().size(), list->height() / card->height() + 6);
    }
}

TEST_F(HistoryPageTest, DeletingByTheKeyboardLeavesTheFocusOnTheNextCard) {
    open({u"first"_qs, u"second"_qs, u"third"_qs});
    typeInto(u"Search your dictations"_qs, {});
    for (int i = 0; i < 7; ++i)
        type(Qt::Key_Tab);
    EXPECT_EQ(focusName(), u"Delete dictation"_qs);
    type(Qt::Key_Space);
    EXPECT_EQ(cards(), (QStringList{u"first"_qs, u"third"_qs}));
    EXPECT_EQ(focusName(), u"Delete dictation"_qs);
    type(Qt::Key_Space);
    EXPECT_EQ(cards(), QStringList{u"first"_qs});
    type(Qt::Key_Return);
    EXPECT_TRUE(shows(u"A fresh start."_qs));
}

TEST_F(HistoryPageTest, TheExportIsTheStores) {
    open({u"first"_qs});
    const QString target = ports.dataHome.filePath(u"export.txt"_qs);
    ports.savePanel.answer = target;
    ASSERT_TRUE(activate(u"Export"_qs));
    EXPECT_EQ(store->statusMessage(), u"History exported."_qs);
}

} // namespace
} // namespace lorvane
