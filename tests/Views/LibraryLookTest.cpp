#include "LookFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

class LibraryLookTest : public LookFixture {
protected:
    void SetUp() override {
        LookFixture::SetUp();
        window->open();
    }

    /// What the button says while the pointer rests on it.
    static QString tooltip(const QString &name) {
        for (const QObject *part : button(name)->object()->children())
            if (part->inherits("QQuickToolTipAttached"))
                return part->property("text").toString();
        return {};
    }

    static int sheetWidth() {
        for (const QWindow *open : QGuiApplication::topLevelWindows())
            if (open->isVisible() && open->modality() == Qt::WindowModal)
                return open->width();
        return 0;
    }
};

TEST_F(LibraryLookTest, History) {
    store->setHistory({record(u"first"_qs), record(u"second"_qs)});
    ASSERT_TRUE(activate(u"History"_qs));
    const QString line = u"Find, copy, and revisit the words you’ve captured."_qs;
    expectLooks({
        {u"magnifyingglass"_qs, u"12 muted"_qs},
        {u"[magnifyingglass]"_qs, u"r9 white line"_qs},
        {u"Search your dictations"_qs, u"12 placeholder"_qs},
        {u"square.and.arrow.up"_qs, u"13 ink"_qs},
        {u"ellipsis"_qs, u"13 ink"_qs},
        {u"2 dictations"_qs, u"11 muted"_qs},
        {u"[first]"_qs, u"r16 card line"_qs},
        {date(), u"11 muted"_qs},
        {u"·"_qs, u"11 muted"_qs},
        {u"1 words"_qs, u"11 muted"_qs},
        {u"3s"_qs, u"11 muted"_qs},
        {u"doc.on.doc"_qs, u"11 muted"_qs},
        {u"trash"_qs, u"11 muted"_qs},
        {u"first"_qs, u"14 ink /5"_qs},
    });
    expectGaps({
        {line, u"[magnifyingglass]"_qs, 25},
        {u"magnifyingglass"_qs, u"Search your dictations"_qs, 8},
        {u"[magnifyingglass]"_qs, u"[Export]"_qs, 12},
        {u"[magnifyingglass]"_qs, u"2 dictations"_qs, 25},
        {u"2 dictations"_qs, u"[first]"_qs, 25},
        {date(), u"·"_qs, 8},
        {date(), u"first"_qs, 15},
        {u"[first]"_qs, u"[second]"_qs, 14},
    });
    for (const QString &name : {u"Copy dictation"_qs, u"Delete dictation"_qs})
        EXPECT_EQ(tooltip(name), name);
    expectInset(u"A PLACE FOR EVERY THOUGHT"_qs, u"LorHistoryView"_qs, 36, 36);
    expectInset(date(), u"[first]"_qs, 24, 24);
    EXPECT_EQ(place(u"magnifyingglass"_qs).left() - place(u"[magnifyingglass]"_qs).left(), 11);
    EXPECT_EQ(place(u"[magnifyingglass]"_qs).height(),
              std::max(place(u"Search your dictations"_qs).height(), 13.0) + 22);
    EXPECT_EQ(place(u"LorMenuButton"_qs).width(), 24);

    typeInto(u"Search your dictations"_qs, u"third"_qs);
    expectLooks({
        {u"third"_qs, u"12 ink"_qs},
        {u"xmark.circle.fill"_qs, u"12 muted"_qs},
        {u"magnifyingglass"_qs, u"27 accent"_qs, 1},
        {u"No matching thoughts."_qs, u"17 semibold ink"_qs},
    });
    const QString message = u"Try a different word or clear the search to see every dictation."_qs;
    expectGaps({{u"No matching thoughts."_qs, message, 12}});
    EXPECT_EQ(look(message), u"12 muted"_qs);
    EXPECT_LE(place(message).width(), 340);
    typeInto(u"Search your dictations"_qs, {});

    ASSERT_TRUE(activate(u"History options"_qs));
    EXPECT_EQ(look(u"Delete all history…"_qs), u"13 red"_qs);
    ASSERT_TRUE(activate(u"Delete all history…"_qs, QAccessible::MenuItem));
    EXPECT_EQ(look(u"Delete all history"_qs), u"13 red"_qs);
    ASSERT_TRUE(activate(u"Cancel"_qs));

    store->setHistory({});
    EXPECT_EQ(look(u"clock"_qs), u"27 accent"_qs);
}

TEST_F(LibraryLookTest, Dictionary) {
    store->setVocabulary({{u"kube ctl"_qs, u"kubectl"_qs}, {u"shiv on"_qs, u"Siobhan"_qs}});
    ASSERT_TRUE(activate(u"Dictionary"_qs));
    const QString note =
        u"Variants help recognition. Name corrections apply when you finish dictating."_qs;
    expectLooks({
        {u"Add name or phrase"_qs, u"13 semibold white"_qs},
        {u"plus"_qs, u"13 white"_qs},
        {u"[plus]"_qs, u"r9 accent"_qs},
        {u"textformat.abc"_qs, u"17 muted"_qs},
        {u"[textformat.abc]"_qs, u"r9 canvas"_qs},
        {u"kubectl"_qs, u"14 medium ink"_qs},
        {u"Recognizes: kube ctl"_qs, u"12 muted"_qs},
        {u"doc.on.doc"_qs, u"13 ink"_qs},
        {u"pencil"_qs, u"13 ink"_qs},
        {u"trash"_qs, u"13 ink"_qs},
        {u"info.circle"_qs, u"11 muted"_qs},
        {note, u"11 muted"_qs},
    });
    expectGaps({
        {u"[magnifyingglass]"_qs, u"[plus]"_qs, 12},
        {u"[plus]"_qs, u"kubectl"_qs, 25 + 20},
        {u"[textformat.abc]"_qs, u"kubectl"_qs, 18},
        {u"kubectl"_qs, u"Recognizes: kube ctl"_qs, 7},
    });
    const QQuickItem *panel =
        item(u"DictionaryEntry"_qs)->childItems().first()->childItems().first();
    EXPECT_EQ(frameLook(*panel), u"r14 panel line"_qs);
    EXPECT_EQ(item(u"Recognizes: kube ctl"_qs)->property("maximumLineCount").toInt(), 3);
    EXPECT_EQ(tooltip(u"Copy kubectl"_qs), u"Copy preferred name or phrase"_qs);
    expectSize(u"[textformat.abc]"_qs, 36, 36);
    EXPECT_EQ(place(u"[textformat.abc]"_qs).left(), place(u"[magnifyingglass]"_qs).left() + 20);
    EXPECT_EQ(place(u"plus"_qs).left() - place(u"[plus]"_qs).left(), 18);
    EXPECT_EQ(place(u"[plus]"_qs).height(),
              std::max(place(u"Add name or phrase"_qs).height(), place(u"plus"_qs).height()) + 22);
    EXPECT_EQ(place(u"LorDivider"_qs).left(), place(u"[magnifyingglass]"_qs).left() + 20);
    EXPECT_EQ(item(u"LorDivider"_qs, 1), nullptr) << "none below the last row";

    store->setVocabulary({});
    EXPECT_EQ(look(u"character.book.closed"_qs, 1), u"27 accent"_qs);
    EXPECT_TRUE(isEnabled(u"Add name or phrase"_qs));
}

TEST_F(LibraryLookTest, TheEditorOfAnEntry) {
    ASSERT_TRUE(activate(u"Dictionary"_qs));
    ASSERT_TRUE(activate(u"Add name or phrase"_qs));
    ASSERT_TRUE(activate(u"Add another variant"_qs));
    const QString heading = u"One name. Many ways to hear it."_qs;
    const QString line = u"All variants below will become the same preferred name or phrase."_qs;
    expectLooks({
        {heading, u"22 semibold ink"_qs},
        {line, u"12 muted"_qs},
        {u"Preferred name or phrase"_qs, u"12 medium ink"_qs},
        {u"e.g. Siobhan"_qs, u"13 placeholder"_qs},
        {u"[e.g. Siobhan]"_qs, u"r6 white focus"_qs},
        {u"Spoken / transcribed variants"_qs, u"12 medium ink"_qs},
        {u"e.g. shiv on or she vawn"_qs, u"13 placeholder"_qs},
        {u"minus.circle"_qs, u"13 ink"_qs},
        {u"plus.circle"_qs, u"13 accent"_qs},
        {u"Add another variant"_qs, u"13 accent"_qs},
        {u"Save entry"_qs, u"13 semibold white"_qs},
        {u"[Save entry]"_qs, u"r9 accent"_qs},
    });
    EXPECT_EQ(item(u"LorPrimaryButton"_qs)->opacity(), 1) << "disabled it looks no different";
    expectGaps({
        {heading, line, 20},
        {line, u"Preferred name or phrase"_qs, 20},
        {u"Preferred name or phrase"_qs, u"[e.g. Siobhan]"_qs, 7},
        {u"[e.g. Siobhan]"_qs, u"Spoken / transcribed variants"_qs, 20},
        {u"Spoken / transcribed variants"_qs, u"VariantList"_qs, 7},
        {u"VariantList"_qs, u"Add another variant"_qs, 7},
    });
    EXPECT_EQ(place(heading).topLeft(), QPointF(30, 30));
    EXPECT_EQ(sheetWidth(), 570);
    const QRectF field = place(u"[e.g. shiv on or she vawn]"_qs);
    EXPECT_EQ(place(u"[e.g. shiv on or she vawn]"_qs, 1).top() - field.bottom(), 10);
    typeInto(u"Preferred name or phrase"_qs, u"name"_qs);
    store->setVocabulary({{u"name"_qs, u"name"_qs}});
    ASSERT_TRUE(activate(u"Save entry"_qs));
    EXPECT_EQ(
        look(
            u"“name” already belongs to another name. Edit that entry or choose another variant."_qs),
        u"11 red"_qs);
}

TEST_F(LibraryLookTest, Snippets) {
    store->setSnippets({{.trigger = u"address"_qs, .content = u"Here 1"_qs},
                        {.trigger = u"sign off"_qs, .content = u"Kind regards"_qs}});
    ASSERT_TRUE(activate(u"Snippets"_qs));
    expectLooks({
        {u"[address]"_qs, u"r16 card line"_qs},
        {u"quote.bubble"_qs, u"13 accent"_qs},
        {u"address"_qs, u"13 semibold accent"_qs},
        {u"doc.on.doc"_qs, u"13 ink"_qs},
        {u"pencil"_qs, u"13 ink"_qs},
        {u"trash"_qs, u"13 ink"_qs},
        {u"Here 1"_qs, u"13 ink /4"_qs},
        {u"info.circle"_qs, u"11 muted"_qs},
    });
    expectGaps({
        {u"[address]"_qs, u"[sign off]"_qs, 14},
        {u"address"_qs, u"Here 1"_qs, 15},
    });
    store->setSnippets({});
    EXPECT_EQ(look(u"text.bubble"_qs, 1), u"27 accent"_qs);

    ASSERT_TRUE(activate(u"New snippet"_qs));
    expectLooks({
        {u"Create a snippet"_qs, u"22 semibold ink"_qs},
        {u"When I say"_qs, u"12 medium ink"_qs},
        {u"e.g. my signature"_qs, u"13 placeholder"_qs},
        {u"Write this instead"_qs, u"12 medium ink"_qs},
        {u"[LorTextEditor]"_qs, u"r8 white line"_qs},
        {u"Edit or paste any text here, including multiple lines. Changes are applied only when you save."_qs,
         u"11 muted"_qs},
        {u"Save snippet"_qs, u"13 semibold white"_qs},
    });
    EXPECT_EQ(sheetWidth(), 520);
    EXPECT_EQ(place(u"LorTextEditor"_qs).height(), 200);
    expectInset(u"LorTextEditor"_qs, u"[LorTextEditor]"_qs, 8, 8);
    expectGaps({{u"Create a snippet"_qs, u"When I say"_qs, 20},
                {u"Write this instead"_qs, u"[LorTextEditor]"_qs, 7}});
}

} // namespace
} // namespace lorvane
