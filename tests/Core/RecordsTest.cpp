#include "Core/Models.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

const QUuid id(u"3F2504E0-4F89-41D3-9A0C-0305E82C3301"_s);
const QDateTime noon(QDate(2026, 3, 14), QTime(12, 0), Qt::UTC);
const QString composed = u"caf\u00E9"_s;
const QString decomposed = u"cafe\u0301"_s;

TEST(TranscriptRecords, GetAFreshIdAndTheCurrentInstant) {
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const TranscriptRecord first{.text = u"a"_s, .duration = 1};
    const TranscriptRecord second{.text = u"a"_s, .duration = 1};
    const QDateTime after = QDateTime::currentDateTimeUtc();
    EXPECT_FALSE(first.id.isNull());
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.id.version(), QUuid::Random);
    EXPECT_GE(first.createdAt, before);
    EXPECT_LE(first.createdAt, after);
}

TEST(TranscriptRecords, CountTheirWordsOnEachRead) {
    TranscriptRecord record{.text = u"  two\n words "_s, .duration = 1};
    EXPECT_EQ(record.wordCount(), 2);
    record.text = u" \u2003\n"_s;
    EXPECT_EQ(record.wordCount(), 0);
    record.text.clear();
    EXPECT_EQ(record.wordCount(), 0);
}

TEST(TranscriptRecords, AreEqualWhenAllFieldsAre) {
    const TranscriptRecord record{id, noon, composed, 4.25};
    EXPECT_EQ(record, (TranscriptRecord{id, noon, decomposed, 4.25}));
    EXPECT_NE(record, (TranscriptRecord{QUuid(), noon, composed, 4.25}));
    EXPECT_NE(record, (TranscriptRecord{id, noon.addMSecs(1), composed, 4.25}));
    EXPECT_NE(record, (TranscriptRecord{id, noon, u"Caf\u00E9"_s, 4.25}));
    EXPECT_NE(record, (TranscriptRecord{id, noon, composed, 4.5}));
}

TEST(TranscriptRecords, CompareInstantsNotTimeZones) {
    EXPECT_EQ((TranscriptRecord{id, noon, composed, 1}),
              (TranscriptRecord{id, noon.toOffsetFromUtc(3600), composed, 1}));
}

TEST(Snippets, KeepBothTextsAsGivenAndGetAFreshId) {
    const Snippet snippet{.trigger = u" Sign Off "_s, .content = u"Regards,\n"_s};
    EXPECT_EQ(snippet.trigger, u" Sign Off "_s);
    EXPECT_EQ(snippet.content, u"Regards,\n"_s);
    EXPECT_NE(snippet.id, (Snippet{.trigger = u"a"_s, .content = u"b"_s}.id));
}

TEST(Snippets, AreEqualWhenAllFieldsAre) {
    const Snippet snippet{id, composed, composed};
    EXPECT_EQ(snippet, (Snippet{id, decomposed, decomposed}));
    EXPECT_NE(snippet, (Snippet{QUuid(), composed, composed}));
    EXPECT_NE(snippet, (Snippet{id, u"cafe"_s, composed}));
    EXPECT_NE(snippet, (Snippet{id, composed, u"cafe"_s}));
}

TEST(Settings, StartWithTheirDefaults) {
    const AppSettings settings;
    EXPECT_EQ(settings.languageIdentifier, u"en-AU"_s);
    EXPECT_FALSE(settings.autoPaste);
    EXPECT_TRUE(settings.removeFillers);
    EXPECT_TRUE(settings.smartPunctuation);
}

TEST(Settings, CanBeOverriddenOneByOne) {
    EXPECT_EQ(AppSettings{.autoPaste = true}, (AppSettings{u"en-AU"_s, true, true, true}));
    EXPECT_EQ(AppSettings{.removeFillers = false}, (AppSettings{u"en-AU"_s, false, false, true}));
}

TEST(Settings, AreEqualWhenAllFieldsAre) {
    const AppSettings settings{composed, true, true, true};
    EXPECT_EQ(settings, (AppSettings{decomposed, true, true, true}));
    EXPECT_NE(settings, (AppSettings{u"en"_s, true, true, true}));
    EXPECT_NE(settings, (AppSettings{composed, false, true, true}));
    EXPECT_NE(settings, (AppSettings{composed, true, false, true}));
    EXPECT_NE(settings, (AppSettings{composed, true, true, false}));
}

TEST(Snapshots, StartAsTheEmptyLibraryOfTheCurrentVersion) {
    const AppSnapshot snapshot;
    EXPECT_EQ(snapshot.schemaVersion, 2);
    EXPECT_TRUE(snapshot.history.isEmpty());
    EXPECT_TRUE(snapshot.vocabulary.isEmpty());
    EXPECT_TRUE(snapshot.snippets.isEmpty());
    EXPECT_EQ(snapshot.scratchpad, u""_s);
    EXPECT_EQ(snapshot.settings, AppSettings());
}

TEST(Snapshots, AreEqualWhenAllFieldsAre) {
    const AppSnapshot snapshot{.scratchpad = composed};
    EXPECT_EQ(snapshot, AppSnapshot{.scratchpad = decomposed});
    const auto changed = [&](auto change) {
        AppSnapshot copy = snapshot;
        change(copy);
        return copy;
    };
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.schemaVersion = 1; }));
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.history.append({id, noon, {}, 1}); }));
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.vocabulary.append({{}, {}}); }));
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.snippets.append(Snippet()); }));
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.scratchpad.clear(); }));
    EXPECT_NE(snapshot, changed([](AppSnapshot &copy) { copy.settings.autoPaste = true; }));
}

} // namespace
} // namespace lorvane
