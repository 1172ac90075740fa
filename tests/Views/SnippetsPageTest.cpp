#include "PageFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

const QStringList snippetsHead{
    u"SAY A LITTLE. WRITE A LOT."_qs, u"Snippets"_qs,
    u"Turn short spoken phrases into the text you find yourself repeating."_qs,
    u"Search your snippets"_qs};
const QString snippetsNote = u"Dictate a trigger phrase on its own. It expands when you finish."_qs;

Snippet snippet(const QString &trigger, const QString &content) {
    return {.trigger = trigger, .content = content};
}

class SnippetsPageTest : public PageFixture {
protected:
    void open(const QList<Snippet> &snippets) {
        store->setSnippets(snippets);
        openPage(u"Snippets"_qs);
    }

    static QStringList card(const QString &trigger, const QString &content) {
        return {trigger, u"Copy snippet"_qs, u"Edit "_qs + trigger, u"Delete "_qs + trigger,
                content};
    }

    static QStringList editor(const QString &heading, const QString &error = {}) {
        QStringList texts{
            heading,
            heading,
            u"When I say"_qs,
            u"Snippet trigger"_qs,
            u"Write this instead"_qs,
            u"Snippet text"_qs,
            u"Edit or paste any text here, including multiple lines. Changes are applied only when you save."_qs};
        if (!error.isEmpty())
            texts += error;
        return texts + QStringList{u"Cancel"_qs};
    }

    void openEditor() { ASSERT_TRUE(activate(u"New snippet"_qs)); }
    static void typeTrigger(const QString &text) { typeInto(u"Snippet trigger"_qs, text); }
    static void typeContent(const QString &text) { typeInto(u"Snippet text"_qs, text); }
    static bool save() { return activate(u"Save snippet"_qs); }
};

TEST_F(SnippetsPageTest, WithoutSnippetsItInvites) {
    open({});
    EXPECT_EQ(
        page(),
        snippetsHead +
            QStringList(
                {u"New snippet"_qs, u"A shortcut for your voice."_qs,
                 u"Try a phrase like “my signature” and pair it with your full sign-off. Dictate the phrase on its own to expand it."_qs,
                 snippetsNote}));
}

TEST_F(SnippetsPageTest, SnippetsStandInTheOrderOfTheirTriggers) {
    open({snippet(u"sign off"_qs, u"Kind regards,\nMe"_qs), snippet(u"Address"_qs, u"Here 1"_qs)});
    EXPECT_EQ(page(),
              snippetsHead + QStringList{u"New snippet"_qs} + card(u"Address"_qs, u"Here 1"_qs) +
                  card(u"sign off"_qs, u"Kind regards,\nMe"_qs) + QStringList{snippetsNote});
}

TEST_F(SnippetsPageTest, ASearchLooksAtTriggerAndContent) {
    open({snippet(u"sign off"_qs, u"Kind regards"_qs), snippet(u"address"_qs, u"Here 1"_qs)});
    typeInto(u"Search your snippets"_qs, u"REGARDS"_qs);
    EXPECT_TRUE(shows(u"Edit sign off"_qs));
    EXPECT_FALSE(shows(u"Edit address"_qs));
    typeInto(u"Search your snippets"_qs, u"addr"_qs);
    EXPECT_TRUE(shows(u"Edit address"_qs));
    typeInto(u"Search your snippets"_qs, u"nothing"_qs);
    EXPECT_EQ(
        page().mid(4),
        (QStringList{u"Clear search"_qs, u"New snippet"_qs, u"No matching snippets."_qs,
                     u"Try searching for a trigger phrase or part of its text."_qs, snippetsNote}));
}

TEST_F(SnippetsPageTest, ASnippetIsCopiedAndDeletedAtOnce) {
    open({snippet(u"sign off"_qs, u"Kind regards"_qs), snippet(u"address"_qs, u"Here 1"_qs)});
    ASSERT_TRUE(activate(u"Copy snippet"_qs, QAccessible::Button, 1));
    EXPECT_EQ(ports.pasteboard.text, u"Kind regards"_qs);
    ASSERT_TRUE(activate(u"Delete sign off"_qs));
    EXPECT_EQ(store->snippets().size(), 1);
    EXPECT_FALSE(shows(u"Edit sign off"_qs));
}

TEST_F(SnippetsPageTest, ANewSnippetIsWrittenInASheet) {
    open({});
    openEditor();
    EXPECT_EQ(sheet(), editor(u"Create a snippet"_qs) + QStringList{u"Save snippet (out)"_qs});
    typeTrigger(u" my signature "_qs);
    typeContent(u"   "_qs);
    EXPECT_FALSE(isEnabled(u"Save snippet"_qs));
    typeContent(u"  two lines"_qs);
    type(Qt::Key_Return);
    type(Qt::Key_unknown, u"here  "_qs);
    EXPECT_FALSE(sheet().isEmpty()) << "Return breaks the line here";
    ASSERT_TRUE(save());
    EXPECT_TRUE(sheet().isEmpty());
    ASSERT_EQ(store->snippets().size(), 1);
    EXPECT_EQ(store->snippets().first().trigger, u"my signature"_qs);
    EXPECT_EQ(store->snippets().first().content, u"  two lines\nhere  "_qs);
}

TEST_F(SnippetsPageTest, ASnippetIsChangedInTheSameSheet) {
    const Snippet first = snippet(u"sign off"_qs, u" Kind regards\n"_qs);
    open({first, snippet(u"address"_qs, u"Here 1"_qs)});
    ASSERT_TRUE(activate(u"Edit sign off"_qs));
    EXPECT_EQ(sheet(), editor(u"Edit snippet"_qs) + QStringList{u"Save snippet"_qs});
    EXPECT_EQ(find(u"Snippet trigger"_qs)->text(QAccessible::Value), u"sign off"_qs);
    typeTrigger(u"Sign Off"_qs);
    type(Qt::Key_Return);
    EXPECT_TRUE(sheet().isEmpty()) << "its own trigger with new capitals is accepted";
    EXPECT_EQ(store->snippets().first(), (Snippet{first.id, u"Sign Off"_qs, first.content}));
}

TEST_F(SnippetsPageTest, ATriggerOfAnotherSnippetIsRefused) {
    open({snippet(u"sign off"_qs, u"Kind regards"_qs)});
    openEditor();
    typeTrigger(u" SIGN OFF"_qs);
    typeContent(u"text"_qs);
    ASSERT_TRUE(save());
    const QString error = u"This trigger phrase already exists. Choose another phrase."_qs;
    EXPECT_EQ(sheet(), editor(u"Create a snippet"_qs, error) + QStringList{u"Save snippet"_qs});
    typeTrigger(u"sígn off"_qs);
    EXPECT_TRUE(shows(error)) << "typing doesn't clear it";
    ASSERT_TRUE(save());
    EXPECT_EQ(store->snippets().size(), 2) << "accents count";
}

TEST_F(SnippetsPageTest, ASnippetThatIsGoneMeanwhileIsNotMadeAnew) {
    open({snippet(u"sign off"_qs, u"Kind regards"_qs)});
    ASSERT_TRUE(activate(u"Edit sign off"_qs));
    store->setSnippets({});
    ASSERT_TRUE(save());
    EXPECT_EQ(sheet(),
              editor(u"Edit snippet"_qs,
                     u"This snippet is no longer available. Close the editor and try again."_qs) +
                  QStringList{u"Save snippet"_qs});
    EXPECT_TRUE(store->snippets().isEmpty());
    type(Qt::Key_Escape);
    EXPECT_TRUE(sheet().isEmpty());
}

TEST_F(SnippetsPageTest, TheSheetIsWalkedByTabAndTheTextDoesNotKeepIt) {
    open({snippet(u"sign off"_qs, u"Kind regards"_qs)});
    ASSERT_TRUE(activate(u"Edit sign off"_qs));
    QStringList order{focusName()};
    for (int i = 0; i < 4; ++i) {
        type(Qt::Key_Tab);
        order.append(focusName());
    }
    EXPECT_EQ(order, (QStringList{u"Snippet trigger"_qs, u"Snippet text"_qs, u"Cancel"_qs,
                                  u"Save snippet"_qs, u"Snippet trigger"_qs}));
    type(Qt::Key_Tab);
    type(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), u"Snippet trigger"_qs);
}

} // namespace
} // namespace lorvane
