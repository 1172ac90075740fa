#include "Core/Models.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Entries = QList<VocabularyEntry>;

TEST(NormalizedPhrases, AreTrimmedWithoutBlanksAndRepetitions) {
    EXPECT_EQ(
        VocabularyEntry::normalizedPhrases({u" Foo "_s, u"foo"_s, u""_s, u"Bar"_s, u"\u3000"_s}),
        QStringList({u"Foo"_s, u"Bar"_s}));
}

TEST(NormalizedPhrases, OfNothingOrOfBlanksAreNone) {
    EXPECT_EQ(VocabularyEntry::normalizedPhrases({}), QStringList());
    EXPECT_EQ(VocabularyEntry::normalizedPhrases({u""_s, u" \n"_s, u"\u00A0"_s}), QStringList());
}

TEST(NormalizedPhrases, KeepTheFirstSpellingAndTheOrder) {
    EXPECT_EQ(VocabularyEntry::normalizedPhrases({u"b"_s, u"KUBE"_s, u"a"_s, u"kube"_s, u"B"_s}),
              QStringList({u"b"_s, u"KUBE"_s, u"a"_s}));
}

TEST(NormalizedPhrases, CompareCaselesslyAndCanonicallyButWithDiacritics) {
    EXPECT_EQ(VocabularyEntry::normalizedPhrases(
                  {u"Kub\u00E9"_s, u"KUBE\u0301"_s, u"kube"_s, u"stra\u00DFe"_s, u"STRASSE"_s}),
              QStringList({u"Kub\u00E9"_s, u"kube"_s, u"stra\u00DFe"_s}));
}

TEST(VocabularyEntries, StoreTheirAliasesNormalisedAndWithoutThePhrase) {
    const VocabularyEntry entry(u"bar"_s, u""_s, {u" Foo "_s, u"foo"_s, u""_s, u"Bar"_s});
    EXPECT_EQ(entry.aliases, QStringList(u"Foo"_s));
}

TEST(VocabularyEntries, StorePhraseAndReplacementAsGiven) {
    const VocabularyEntry entry(u" bar "_s, u" X "_s, {u"bar"_s});
    EXPECT_EQ(entry.phrase, u" bar "_s);
    EXPECT_EQ(entry.replacement, u" X "_s);
    EXPECT_EQ(entry.aliases,
              QStringList(u"bar"_s)); // the phrase as given has blanks, this has none
}

TEST(VocabularyEntries, GetAFreshId) {
    EXPECT_NE(VocabularyEntry(u"a"_s, u"b"_s).id, VocabularyEntry(u"a"_s, u"b"_s).id);
    EXPECT_EQ(VocabularyEntry(u"a"_s, u"b"_s).aliases, QStringList());
}

TEST(PreferredText, IsTheReplacementOrElseThePhraseAsStored) {
    EXPECT_EQ(VocabularyEntry(u"a"_s, u"b"_s).preferredText(), u"b"_s);
    EXPECT_EQ(VocabularyEntry(u" a "_s, u""_s).preferredText(), u" a "_s);
    EXPECT_EQ(VocabularyEntry(u"a"_s, u"  "_s).preferredText(), u"  "_s);
}

TEST(MatchingPhrases, BeginWithTheTrimmedPhrase) {
    EXPECT_EQ(VocabularyEntry(u" kube ctl "_s, u"kubectl"_s, {u"cube control"_s, u"Kube Ctl"_s})
                  .matchingPhrases(),
              QStringList({u"kube ctl"_s, u"cube control"_s}));
}

TEST(MatchingPhrases, LeaveABlankPhraseOut) {
    const VocabularyEntry entry(u" "_s, u"X"_s, {u"y"_s});
    EXPECT_EQ(entry.preferredText(), u"X"_s);
    EXPECT_EQ(entry.matchingPhrases(), QStringList(u"y"_s));
}

TEST(Conflicts, AreThisEntrysFirstPhraseThatAnotherClaims) {
    const VocabularyEntry own(u"a"_s, u"X"_s, {u"Bee"_s, u"sea"_s});
    const Entries others{VocabularyEntry(u"SEA"_s, u"Y"_s),
                         VocabularyEntry(u"d"_s, u"Z"_s, {u"bee"_s})};
    EXPECT_EQ(own.conflictingPhrase(others), u"Bee"_s);
}

TEST(Conflicts, ArentFoundWithItselfOrItsOldState) {
    const VocabularyEntry own(u"a"_s, u"X"_s, {u"b"_s});
    VocabularyEntry edited = own;
    edited.aliases = {u"b"_s, u"c"_s};
    EXPECT_EQ(edited.conflictingPhrase({own}), std::nullopt);
    EXPECT_EQ(own.conflictingPhrase({own}), std::nullopt);
}

TEST(Conflicts, ArentFoundWhereNothingIsShared) {
    const VocabularyEntry own(u"Kube"_s, u"X"_s);
    EXPECT_EQ(own.conflictingPhrase({}), std::nullopt);
    EXPECT_EQ(own.conflictingPhrase({VocabularyEntry(u"Kub\u00E9"_s, u"X"_s)}), std::nullopt);
}

TEST(Conflicts, AreOfPhrasesNotOfWhatTheyProduce) {
    const VocabularyEntry own(u"a"_s, u"X"_s);
    EXPECT_EQ(own.conflictingPhrase({VocabularyEntry(u"b"_s, u"X"_s)}), std::nullopt);
    EXPECT_EQ(own.conflictingPhrase({VocabularyEntry(u" A "_s, u"Y"_s)}), u"a"_s);
}

TEST(RecognitionHints, AreAllPreferredTextsAndThenAllPhrasesEachOnce) {
    const Entries entries{VocabularyEntry(u"kube ctl"_s, u"kubectl"_s, {u"cube control"_s}),
                          VocabularyEntry(u"Lorvane"_s, u""_s, {u"lore vane"_s, u"KUBECTL"_s}),
                          VocabularyEntry(u"blank"_s, u"  "_s)};
    EXPECT_EQ(VocabularyEntry::recognitionHints(entries),
              QStringList({u"kubectl"_s, u"Lorvane"_s, u"kube ctl"_s, u"cube control"_s,
                           u"lore vane"_s, u"blank"_s}));
    EXPECT_EQ(VocabularyEntry::recognitionHints({}), QStringList());
}

TEST(RecognitionHints, HaveNoLimitAndPutAHundredTargetsBeforeAnyPhrase) {
    Entries entries;
    for (int i = 0; i < 120; ++i)
        entries.append({QStringLiteral("heard %1").arg(i), QStringLiteral("target %1").arg(i)});
    const QStringList hints = VocabularyEntry::recognitionHints(entries);
    ASSERT_EQ(hints.size(), 240);
    for (int i = 0; i < 120; ++i)
        EXPECT_EQ(hints.at(i), QStringLiteral("target %1").arg(i));
}

TEST(Consolidation, MergesEntriesThatProduceTheSameText) {
    const Entries entries{VocabularyEntry(u"a"_s, u"X"_s), VocabularyEntry(u"b"_s, u"X"_s),
                          VocabularyEntry(u"A"_s, u"X"_s)};
    const Entries merged = VocabularyEntry::consolidated(entries);
    EXPECT_EQ(merged, Entries({VocabularyEntry(u"a"_s, u"X"_s, {u"b"_s}, entries.first().id)}));
}

TEST(Consolidation, KeepsTheFirstIdAndReplacementAndTheOrderOfGroups) {
    const Entries entries{VocabularyEntry(u"a"_s, u"X"_s, {u"c"_s}),
                          VocabularyEntry(u"q"_s, u"Y"_s),
                          VocabularyEntry(u"b"_s, u"X"_s, {u"C"_s, u"d"_s})};
    EXPECT_EQ(VocabularyEntry::consolidated(entries),
              Entries({VocabularyEntry(u"a"_s, u"X"_s, {u"c"_s, u"b"_s, u"d"_s}, entries.at(0).id),
                       entries.at(1)}));
}

TEST(Consolidation, ComparesTargetsWithTheirCase) {
    const Entries entries{VocabularyEntry(u"a"_s, u"Kube"_s), VocabularyEntry(u"A"_s, u"kube"_s)};
    EXPECT_EQ(VocabularyEntry::consolidated(entries), entries);
    EXPECT_EQ(entries.at(0).conflictingPhrase(entries), u"a"_s);
}

TEST(Consolidation, ComparesTargetsCanonically) {
    EXPECT_EQ(VocabularyEntry::consolidated({VocabularyEntry(u"a"_s, u"caf\u00E9"_s),
                                             VocabularyEntry(u"b"_s, u"cafe\u0301"_s)})
                  .size(),
              1);
}

TEST(Consolidation, MergesAPhraseThatProducesItselfWithThatTarget) {
    const Entries entries{VocabularyEntry(u"Lorvane"_s, u""_s),
                          VocabularyEntry(u"lore vane"_s, u"Lorvane"_s)};
    EXPECT_EQ(
        VocabularyEntry::consolidated(entries),
        Entries({VocabularyEntry(u"Lorvane"_s, u""_s, {u"lore vane"_s}, entries.first().id)}));
}

TEST(Consolidation, PromotesAnAliasWhereThePhraseIsBlank) {
    const Entries entries{VocabularyEntry(u" "_s, u"X"_s),
                          VocabularyEntry(u""_s, u"X"_s, {u"y"_s, u"z"_s})};
    const Entries merged = VocabularyEntry::consolidated(entries);
    ASSERT_EQ(merged.size(), 1);
    EXPECT_EQ(merged.first().phrase, u"y"_s);
    EXPECT_EQ(merged.first().aliases, QStringList(u"z"_s));
}

TEST(Consolidation, LeavesTheFoundEntryWhereNeitherHasAPhrase) {
    const Entries entries{VocabularyEntry(u" "_s, u"X"_s), VocabularyEntry(u"\n"_s, u"X"_s)};
    EXPECT_EQ(VocabularyEntry::consolidated(entries), Entries({entries.first()}));
}

TEST(Consolidation, ComparesWithWhatTheMergedEntryProducesByThen) {
    // Merging trims the phrase, and with no replacement that is what the entry produces.
    const Entries entries{VocabularyEntry(u" X "_s, u""_s), VocabularyEntry(u"y"_s, u" X "_s),
                          VocabularyEntry(u"z"_s, u"X"_s)};
    const Entries merged = VocabularyEntry::consolidated(entries);
    ASSERT_EQ(merged.size(), 1);
    EXPECT_EQ(merged.first().phrase, u"X"_s);
    EXPECT_EQ(merged.first().aliases, QStringList({u"y"_s, u"z"_s}));
}

TEST(Consolidation, LeavesEntriesWithTargetsOfTheirOwnUntouched) {
    const Entries entries{VocabularyEntry(u" a "_s, u"X"_s), VocabularyEntry(u" "_s, u"Y"_s)};
    EXPECT_EQ(VocabularyEntry::consolidated(entries), entries);
    EXPECT_EQ(VocabularyEntry::consolidated({}), Entries());
}

TEST(VocabularyEntryEquality, TakesAllFieldsAndTheOrderOfAliases) {
    const VocabularyEntry entry(u"caf\u00E9"_s, u"b"_s, {u"x"_s, u"\u00E9"_s});
    EXPECT_EQ(entry, VocabularyEntry(u"cafe\u0301"_s, u"b"_s, {u"x"_s, u"e\u0301"_s}, entry.id));
    EXPECT_NE(entry, VocabularyEntry(u"caf\u00E9"_s, u"b"_s, {u"x"_s, u"\u00E9"_s}));
    EXPECT_NE(entry, VocabularyEntry(u"cafe"_s, u"b"_s, {u"x"_s, u"\u00E9"_s}, entry.id));
    EXPECT_NE(entry, VocabularyEntry(u"caf\u00E9"_s, u"B"_s, {u"x"_s, u"\u00E9"_s}, entry.id));
    EXPECT_NE(entry, VocabularyEntry(u"caf\u00E9"_s, u"b"_s, {u"\u00E9"_s, u"x"_s}, entry.id));
    EXPECT_NE(entry, VocabularyEntry(u"caf\u00E9"_s, u"b"_s, {u"x"_s}, entry.id));
}

} // namespace
} // namespace lorvane
