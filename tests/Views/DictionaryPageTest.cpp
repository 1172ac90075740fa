#include "PageFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

const QStringList dictionaryHead{
    u"YOUR WORDS, UNDERSTOOD"_qs, u"Dictionary"_qs,
    u"Give names, technical terms, and favorite phrases their proper spelling."_qs,
    u"Search your vocabulary"_qs};
const QString dictionaryNote =
    u"Variants help recognition. Name corrections apply when you finish dictating."_qs;
const QString variantsNote =
    u"Enter spellings Apple Speech actually writes. Sound-alike variants are matched as whole phrases; they are not guessed automatically. Leave variants empty to keep only the preferred spelling."_qs;

class DictionaryPageTest : public PageFixture {
protected:
    void open(const QList<VocabularyEntry> &entries) {
        store->setVocabulary(entries);
        openPage(u"Dictionary"_qs);
    }

    static QStringList row(const QString &name, const QString &phrases) {
        return {name, u"Recognizes: "_qs + phrases, u"Copy "_qs + name, u"Edit "_qs + name,
                u"Delete "_qs + name};
    }

    static QStringList editor(const QString &heading, const QStringList &variants,
                              const QString &error = {}) {
        QStringList texts{heading,
                          heading,
                          u"All variants below will become the same preferred name or phrase."_qs,
                          u"Preferred name or phrase"_qs,
                          u"Preferred name or phrase"_qs,
                          u"Spoken / transcribed variants"_qs};
        texts += variants;
        texts += {u"Add another variant"_qs, variantsNote};
        if (!error.isEmpty())
            texts += error;
        return texts + QStringList{u"Cancel"_qs};
    }

    static QStringList variants(int lines) {
        QStringList texts;
        for (int i = 0; i < lines; ++i)
            texts += {u"Recognized variant"_qs,
                      lines == 1 ? u"Remove variant (out)"_qs : u"Remove variant"_qs};
        return texts;
    }

    static QString value(const QString &name, int skipped = 0) {
        QAccessibleInterface *seen = find(name, QAccessible::EditableText, skipped);
        return seen ? seen->text(QAccessible::Value) : u"none"_qs;
    }

    void openEditor() { ASSERT_TRUE(activate(u"Add name or phrase"_qs)); }
    static void typeName(const QString &name) { typeInto(u"Preferred name or phrase"_qs, name); }
    static void typeVariant(const QString &variant, int line = 0) {
        typeInto(u"Recognized variant"_qs, variant, line);
    }
    static bool save() { return activate(u"Save entry"_qs); }
};

TEST_F(DictionaryPageTest, WithoutEntriesItInvites) {
    open({});
    EXPECT_EQ(
        page(),
        dictionaryHead +
            QStringList(
                {u"Add name or phrase"_qs, u"Make it your language."_qs,
                 u"Add a preferred name or phrase, then give it the different spellings you see in your transcriptions."_qs,
                 dictionaryNote}));
}

TEST_F(DictionaryPageTest, EntriesStandInTheOrderOfTheAlphabetAndOfNumbers) {
    open({{u"v ten"_qs, u"Version 10"_qs},
          {u"v nine"_qs, u"version 9"_qs},
          {u"kube ctl"_qs, u"kubectl"_qs, {u"cube control"_qs, u"cube cuddle"_qs}},
          {u"Ångström"_qs, {}}});
    EXPECT_EQ(page(), dictionaryHead + QStringList{u"Add name or phrase"_qs} +
                          row(u"Ångström"_qs, u"Ångström"_qs) +
                          row(u"kubectl"_qs, u"kube ctl · cube control · cube cuddle"_qs) +
                          row(u"version 9"_qs, u"v nine"_qs) + row(u"Version 10"_qs, u"v ten"_qs) +
                          QStringList{dictionaryNote});
}

TEST_F(DictionaryPageTest, ASearchLooksAtTheNameAndAllPhrases) {
    open({{u"kube ctl"_qs, u"kubectl"_qs, {u"cube control"_qs}}, {u"shiv on"_qs, u"Siobhan"_qs}});
    typeInto(u"Search your vocabulary"_qs, u"CUBE"_qs);
    EXPECT_TRUE(shows(u"Copy kubectl"_qs));
    EXPECT_FALSE(shows(u"Copy Siobhan"_qs));
    typeInto(u"Search your vocabulary"_qs, u"sio"_qs);
    EXPECT_TRUE(shows(u"Copy Siobhan"_qs));
    typeInto(u"Search your vocabulary"_qs, u"sio "_qs);
    EXPECT_EQ(page().mid(4),
              (QStringList{u"Clear search"_qs, u"Add name or phrase"_qs, u"No matching words."_qs,
                           u"Try another search or add a name."_qs, dictionaryNote}));
    store->setVocabulary({});
    EXPECT_TRUE(shows(u"No matching words."_qs)) << "also in an empty dictionary";
}

TEST_F(DictionaryPageTest, AnEntryIsCopiedAndDeletedAtOnce) {
    open({{u"kube ctl"_qs, u"kubectl"_qs}, {u"shiv on"_qs, u"Siobhan"_qs}});
    ASSERT_TRUE(activate(u"Copy kubectl"_qs));
    EXPECT_EQ(ports.pasteboard.text, u"kubectl"_qs);
    ASSERT_TRUE(activate(u"Delete kubectl"_qs));
    EXPECT_EQ(store->vocabulary().size(), 1);
    EXPECT_FALSE(shows(u"Copy kubectl"_qs));
}

TEST_F(DictionaryPageTest, ANewEntryIsWrittenInASheet) {
    open({});
    openEditor();
    EXPECT_EQ(sheet(), editor(u"One name. Many ways to hear it."_qs, variants(1)) +
                           QStringList{u"Save entry (out)"_qs});
    typeName(u" \t"_qs);
    EXPECT_FALSE(isEnabled(u"Save entry"_qs));
    typeName(u"  Siobhan "_qs);
    EXPECT_TRUE(isEnabled(u"Save entry"_qs));
    typeVariant(u" shiv on"_qs);
    ASSERT_TRUE(activate(u"Add another variant"_qs));
    ASSERT_TRUE(activate(u"Add another variant"_qs));
    ASSERT_TRUE(activate(u"Add another variant"_qs));
    typeVariant(u"she vawn"_qs, 1);
    typeVariant(u"Shiv On"_qs, 2);
    EXPECT_TRUE(store->vocabulary().isEmpty()) << "nothing is changed before the save";
    ASSERT_TRUE(save());
    EXPECT_TRUE(sheet().isEmpty());
    ASSERT_EQ(store->vocabulary().size(), 1);
    const VocabularyEntry &entry = store->vocabulary().first();
    EXPECT_EQ(entry.phrase, u"shiv on"_qs);
    EXPECT_EQ(entry.aliases, QStringList{u"she vawn"_qs});
    EXPECT_EQ(entry.replacement, u"Siobhan"_qs);
    EXPECT_TRUE(shows(u"Recognizes: shiv on · she vawn"_qs));
}

TEST_F(DictionaryPageTest, AnEntryWithoutVariantsIsHeardAsItIsWritten) {
    open({});
    openEditor();
    typeName(u"Siobhan"_qs);
    typeVariant(u"  "_qs);
    ASSERT_TRUE(save());
    ASSERT_EQ(store->vocabulary().size(), 1);
    EXPECT_EQ(store->vocabulary().first().phrase, u"Siobhan"_qs);
    EXPECT_EQ(store->vocabulary().first().replacement, u"Siobhan"_qs);
    EXPECT_TRUE(store->vocabulary().first().aliases.isEmpty());
}

TEST_F(DictionaryPageTest, AnEntryIsChangedInTheSameSheet) {
    const VocabularyEntry entry(u"Siobhan"_qs, {}, {u"shiv on"_qs});
    open({entry, {u"kube ctl"_qs, u"kubectl"_qs}});
    ASSERT_TRUE(activate(u"Edit Siobhan"_qs));
    EXPECT_EQ(sheet(),
              editor(u"Edit name and variants"_qs, variants(2)) + QStringList{u"Save entry"_qs});
    EXPECT_EQ(value(u"Preferred name or phrase"_qs), u"Siobhan"_qs);
    EXPECT_EQ(value(u"Recognized variant"_qs, 0), u"Siobhan"_qs);
    EXPECT_EQ(value(u"Recognized variant"_qs, 1), u"shiv on"_qs);
    ASSERT_TRUE(activate(u"Remove variant"_qs));
    EXPECT_EQ(value(u"Recognized variant"_qs), u"shiv on"_qs);
    EXPECT_FALSE(isEnabled(u"Remove variant"_qs)) << "one line is kept";
    ASSERT_TRUE(save());
    EXPECT_EQ(store->vocabulary().first(),
              VocabularyEntry(u"shiv on"_qs, u"Siobhan"_qs, {}, entry.id));
    EXPECT_EQ(store->vocabulary().size(), 2);
}

TEST_F(DictionaryPageTest, CancelAndEscapeForgetTheDraft) {
    open({});
    openEditor();
    typeName(u"Siobhan"_qs);
    ASSERT_TRUE(activate(u"Cancel"_qs));
    EXPECT_TRUE(sheet().isEmpty());
    openEditor();
    EXPECT_EQ(value(u"Preferred name or phrase"_qs), QString());
    typeName(u"Siobhan"_qs);
    type(Qt::Key_Escape);
    EXPECT_TRUE(sheet().isEmpty());
    EXPECT_TRUE(store->vocabulary().isEmpty());
}

TEST_F(DictionaryPageTest, ReturnSavesUnlessTheNameIsBlank) {
    open({});
    openEditor();
    typeName(u" "_qs);
    type(Qt::Key_Return);
    EXPECT_FALSE(sheet().isEmpty());
    typeName(u"Siobhan"_qs);
    typeVariant(u"shiv on"_qs);
    type(Qt::Key_Return);
    EXPECT_TRUE(sheet().isEmpty());
    EXPECT_EQ(store->vocabulary().size(), 1);
}

TEST_F(DictionaryPageTest, ARefusalKeepsTheSheetAndSaysWhy) {
    open({{u"kube ctl"_qs, u"kubectl"_qs}});
    openEditor();
    typeName(u"kubectl"_qs);
    typeVariant(u"Kube CTL"_qs);
    ASSERT_TRUE(save());
    const QString conflict =
        u"“Kube CTL” already belongs to another name. Edit that entry or choose another variant."_qs;
    EXPECT_EQ(sheet(), editor(u"One name. Many ways to hear it."_qs, variants(1), conflict) +
                           QStringList{u"Save entry"_qs});
    typeVariant(u"cube control"_qs);
    EXPECT_TRUE(shows(conflict)) << "typing doesn't clear it";
    ASSERT_TRUE(save());
    EXPECT_EQ(
        sheet(),
        editor(u"One name. Many ways to hear it."_qs, variants(1),
               u"This preferred name already exists. Edit its entry to add more variants."_qs) +
            QStringList{u"Save entry"_qs});
    EXPECT_EQ(value(u"Recognized variant"_qs), u"cube control"_qs);
    EXPECT_EQ(store->vocabulary().size(), 1);
    ASSERT_TRUE(activate(u"Cancel"_qs));
    openEditor();
    EXPECT_EQ(sheet(), editor(u"One name. Many ways to hear it."_qs, variants(1)) +
                           QStringList{u"Save entry (out)"_qs});
}

TEST_F(DictionaryPageTest, AnEntryThatIsGoneMeanwhileIsNotMadeAnew) {
    open({{u"kube ctl"_qs, u"kubectl"_qs}});
    ASSERT_TRUE(activate(u"Edit kubectl"_qs));
    store->setVocabulary({});
    ASSERT_TRUE(save());
    EXPECT_EQ(sheet(),
              editor(u"Edit name and variants"_qs, variants(1),
                     u"This entry is no longer available. Close the editor and try again."_qs) +
                  QStringList{u"Save entry"_qs});
    EXPECT_TRUE(store->vocabulary().isEmpty());
}

TEST_F(DictionaryPageTest, TheListOfVariantsGrowsToFiveLinesAndThenScrolls) {
    open({});
    openEditor();
    const auto height = [] {
        auto *field = qobject_cast<QQuickItem *>(
            find(u"Recognized variant"_qs, QAccessible::EditableText)->object());
        for (QQuickItem *item = field; item; item = item->parentItem())
            if (item->inherits("QQuickFlickable"))
                return item->implicitHeight();
        return 0.0;
    };
    EXPECT_EQ(height(), 36);
    for (int lines = 2; lines <= 8; ++lines) {
        ASSERT_TRUE(activate(u"Add another variant"_qs));
        EXPECT_EQ(height(), std::min(200, 36 * lines));
    }
}

TEST_F(DictionaryPageTest, TheSheetIsWalkedByTab) {
    open({{u"kube ctl"_qs, u"kubectl"_qs}});
    ASSERT_TRUE(activate(u"Edit kubectl"_qs));
    QStringList order{focusName()};
    for (int i = 0; i < 6; ++i) {
        type(Qt::Key_Tab);
        order.append(focusName());
    }
    EXPECT_EQ(order, (QStringList{u"Preferred name or phrase"_qs, u"Recognized variant"_qs,
                                  u"Add another variant"_qs, u"Cancel"_qs, u"Save entry"_qs,
                                  u"Preferred name or phrase"_qs, u"Recognized variant"_qs}))
        << "and round again";
    type(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), u"Preferred name or phrase"_qs);
}

} // namespace
} // namespace lorvane
