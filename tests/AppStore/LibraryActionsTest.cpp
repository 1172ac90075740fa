#include "StoreFixture.h"

#include "Core/DateLabel.h"
#include "Core/LocalRepository.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

class LibraryActionsTest : public StoreFixture {
protected:
    const QString nameTaken =
        u"This preferred name already exists. Edit its entry to add more variants."_s;

    static QString belongsToAnother(const QString &phrase) {
        return u"“"_s + phrase +
               u"” already belongs to another name. Edit that entry or choose another variant."_s;
    }

    static TranscriptRecord record(const QString &text, double duration = 1) {
        TranscriptRecord made;
        made.createdAt = QDateTime({2026, 3, 14}, {9, 26}, Qt::UTC);
        made.text = text;
        made.duration = duration;
        return made;
    }

    static Snippet snippet(const QString &trigger, const QString &content) {
        return {.trigger = trigger, .content = content};
    }

    QString exportPath() const { return ports.dataHome.filePath(u"Lorvane History.txt"_s); }

    QByteArray exported() const {
        QFile file(exportPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void expectNoMessage() const {
        EXPECT_EQ(store->statusMessage(), QString());
        EXPECT_EQ(store->errorMessage(), QString());
    }
};

// Statistics

TEST_F(LibraryActionsTest, EmptyHistoryHasNoWordsAndNoDuration) {
    EXPECT_EQ(store->totalWords(), 0);
    EXPECT_EQ(store->totalDuration(), 0);
}

TEST_F(LibraryActionsTest, TotalsAreTheSumsOverTheHistory) {
    store->setHistory({record(u"  two\n words "_s, 1.5), record(u"and three more"_s, 2.25)});
    EXPECT_EQ(store->totalWords(), 5);
    EXPECT_EQ(store->totalDuration(), 3.75);
}

// Every set notifies

TEST_F(LibraryActionsTest, SettingAnUnchangedValueNotifies) {
    QMap<QString, int> notified;
    const auto count = [&](const QString &name, auto signal) {
        QObject::connect(store.get(), signal, [&notified, name] { ++notified[name]; });
    };
    count(u"history"_s, &AppStore::historyChanged);
    count(u"vocabulary"_s, &AppStore::vocabularyChanged);
    count(u"snippets"_s, &AppStore::snippetsChanged);
    count(u"scratchpad"_s, &AppStore::scratchpadChanged);
    count(u"settings"_s, &AppStore::settingsChanged);
    count(u"statusMessage"_s, &AppStore::statusMessageChanged);
    count(u"errorMessage"_s, &AppStore::errorMessageChanged);
    count(u"setupStep"_s, &AppStore::setupStepChanged);
    count(u"isSetupPresented"_s, &AppStore::isSetupPresentedChanged);
    count(u"permissions"_s, &AppStore::permissionsChanged);
    store->setHistory(store->history());
    store->setVocabulary(store->vocabulary());
    store->setSnippets(store->snippets());
    EXPECT_TRUE(store->setProperty("scratchpad", store->scratchpad()));
    store->setSettings(store->settings());
    store->dismissStatusMessage();
    store->dismissErrorMessage();
    EXPECT_TRUE(store->setProperty("setupStep", store->setupStepNumber()));
    store->finishSetup();
    store->refreshPermissions();
    EXPECT_EQ(notified.size(), 10);
    for (const auto &[name, times] : notified.asKeyValueRange())
        EXPECT_EQ(times, 1) << name.toStdString();
}

// Copying

TEST_F(LibraryActionsTest, CopyPutsTheTextOnThePasteboardAndSaysSo) {
    store->copyTranscript(u"words"_s);
    EXPECT_EQ(ports.pasteboard.text, u"words"_s);
    EXPECT_EQ(store->statusMessage(), u"Copied to clipboard."_s);
}

// Removal

TEST_F(LibraryActionsTest, RemovalGoesByIdentityAlone) {
    const TranscriptRecord kept = record(u"same"_s);
    const TranscriptRecord gone = record(u"same"_s);
    store->setHistory({kept, gone});
    store->setVocabulary({VocabularyEntry(u"a"_s, u"A"_s), VocabularyEntry(u"b"_s, u"B"_s)});
    store->setSnippets({snippet(u"one"_s, u"1"_s), snippet(u"two"_s, u"2"_s)});

    TranscriptRecord outdatedRecord = gone;
    outdatedRecord.text = u"older"_s;
    store->deleteTranscript(outdatedRecord);
    EXPECT_EQ(store->history(), QList{kept});

    store->deleteVocabulary(
        VocabularyEntry(u"older"_s, u"older"_s, {}, store->vocabulary().first().id));
    ASSERT_EQ(store->vocabulary().size(), 1);
    EXPECT_EQ(store->vocabulary().first().phrase, u"b"_s);

    Snippet outdatedSnippet = store->snippets().first();
    outdatedSnippet.trigger = u"older"_s;
    store->deleteSnippet(outdatedSnippet);
    ASSERT_EQ(store->snippets().size(), 1);
    EXPECT_EQ(store->snippets().first().trigger, u"two"_s);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, RemovalOfWhatIsNotThereChangesNothing) {
    store->setHistory({record(u"here"_s)});
    store->setVocabulary({VocabularyEntry(u"a"_s, u"A"_s)});
    store->setSnippets({snippet(u"one"_s, u"1"_s)});
    store->deleteTranscript(record(u"here"_s));
    store->deleteVocabulary(VocabularyEntry(u"a"_s, u"A"_s));
    store->deleteSnippet(snippet(u"one"_s, u"1"_s));
    EXPECT_EQ(store->history().size(), 1);
    EXPECT_EQ(store->vocabulary().size(), 1);
    EXPECT_EQ(store->snippets().size(), 1);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, ClearingTheHistoryLeavesTheRest) {
    store->setHistory({record(u"one"_s), record(u"two"_s)});
    store->setSnippets({snippet(u"one"_s, u"1"_s)});
    store->setScratchpad(u"notes"_s);
    store->clearHistory();
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_EQ(store->snippets().size(), 1);
    EXPECT_EQ(store->scratchpad(), u"notes"_s);
    expectNoMessage();
}

// The dictionary

TEST_F(LibraryActionsTest, NewEntriesAreAppendedAndEditedOnesKeepTheirPlace) {
    const VocabularyEntry first(u"kube ctl"_s, u"kubectl"_s);
    EXPECT_EQ(store->saveVocabulary(first), std::nullopt);
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"postgres"_s, u"PostgreSQL"_s)), std::nullopt);
    VocabularyEntry edited = first;
    edited.aliases = {u"cube control"_s};
    EXPECT_EQ(store->saveVocabulary(edited), std::nullopt);
    ASSERT_EQ(store->vocabulary().size(), 2);
    EXPECT_EQ(store->vocabulary().at(0), edited);
    EXPECT_EQ(store->vocabulary().at(1).phrase, u"postgres"_s);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, EntrySavedAgainUnchangedIsNotRefused) {
    const VocabularyEntry entry(u"kube"_s, u"Kube"_s, {u"cube"_s});
    EXPECT_EQ(store->saveVocabulary(entry), std::nullopt);
    EXPECT_EQ(store->saveVocabulary(entry), std::nullopt);
    EXPECT_EQ(store->vocabulary(), QList{entry});
}

TEST_F(LibraryActionsTest, PhraseOfAnotherEntryIsRefusedAsSpelledInTheNewOne) {
    const QList<VocabularyEntry> before{VocabularyEntry(u"kube"_s, u"Kubernetes"_s)};
    store->setVocabulary(before);
    bool changed = false;
    QObject::connect(store.get(), &AppStore::vocabularyChanged, [&changed] { changed = true; });
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"cube"_s, u"Cube"_s, {u"other"_s, u"KUBE"_s})),
              belongsToAnother(u"KUBE"_s));
    EXPECT_EQ(store->vocabulary(), before);
    EXPECT_FALSE(changed);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, PreferredNameOfAnotherEntryIsRefused) {
    const QList<VocabularyEntry> before{VocabularyEntry(u"kube"_s, u"Kubernetes"_s)};
    store->setVocabulary(before);
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"k8s"_s, u"Kubernetes"_s)), nameTaken);
    // Without a replacement the phrase itself is the preferred name.
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"Kubernetes"_s, QString())), nameTaken);
    EXPECT_EQ(store->vocabulary(), before);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, PreferredNamesThatDifferInCaseStandSideBySide) {
    store->setVocabulary({VocabularyEntry(u"kube"_s, u"Kubernetes"_s)});
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"k8s"_s, u"kubernetes"_s)), std::nullopt);
    EXPECT_EQ(store->vocabulary().size(), 2);
}

TEST_F(LibraryActionsTest, ConflictOfPhrasesIsToldBeforeThatOfNames) {
    store->setVocabulary({VocabularyEntry(u"kube"_s, u"Kubernetes"_s)});
    EXPECT_EQ(store->saveVocabulary(VocabularyEntry(u"Kube"_s, u"Kubernetes"_s)),
              belongsToAnother(u"Kube"_s));
}

TEST_F(LibraryActionsTest, AddedEntryIsTrimmed) {
    store->addVocabulary(u" \n kube ctl\t"_s, u" kubectl "_s, {u"cube ctl"_s});
    store->addVocabulary(u"postgres"_s, u" \n"_s);
    ASSERT_EQ(store->vocabulary().size(), 2);
    EXPECT_EQ(store->vocabulary().at(0).phrase, u"kube ctl"_s);
    EXPECT_EQ(store->vocabulary().at(0).replacement, u"kubectl"_s);
    EXPECT_EQ(store->vocabulary().at(0).aliases, QStringList{u"cube ctl"_s});
    EXPECT_EQ(store->vocabulary().at(1).replacement, QString());
    EXPECT_EQ(store->vocabulary().at(1).preferredText(), u"postgres"_s);
    EXPECT_NE(store->vocabulary().at(0).id, store->vocabulary().at(1).id);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, BlankPhraseIsIgnored) {
    store->addVocabulary(u" \n\t "_s, u"kubectl"_s);
    EXPECT_TRUE(store->vocabulary().isEmpty());
    expectNoMessage();
}

TEST_F(LibraryActionsTest, RefusalOfAnAddedEntryIsShown) {
    store->addVocabulary(u"kube"_s, u"Kubernetes"_s);
    store->addVocabulary(u" KUBE "_s, u"Cube"_s);
    EXPECT_EQ(store->errorMessage(), belongsToAnother(u"KUBE"_s));
    store->addVocabulary(u"k8s"_s, u"Kubernetes"_s);
    EXPECT_EQ(store->errorMessage(), nameTaken);
    EXPECT_EQ(store->vocabulary().size(), 1);
}

// Snippets

TEST_F(LibraryActionsTest, AddedSnippetIsTrimmedAndAppended) {
    store->addSnippet(u"first"_s, u"1"_s);
    store->addSnippet(u" sign off\n"_s, u"\nRegards,\nAda "_s);
    ASSERT_EQ(store->snippets().size(), 2);
    EXPECT_EQ(store->snippets().at(1).trigger, u"sign off"_s);
    EXPECT_EQ(store->snippets().at(1).content, u"Regards,\nAda"_s);
    expectNoMessage();
}

TEST_F(LibraryActionsTest, BlankSnippetIsIgnored) {
    store->addSnippet(u" \n"_s, u"content"_s);
    store->addSnippet(u"trigger"_s, u" \t\n"_s);
    EXPECT_TRUE(store->snippets().isEmpty());
    expectNoMessage();
}

TEST_F(LibraryActionsTest, TriggerThatExistsIsRefusedWhateverItsCase) {
    store->addSnippet(u"sign off"_s, u"Regards"_s);
    store->addSnippet(u"  Sign OFF "_s, u"Best"_s);
    EXPECT_EQ(store->errorMessage(), u"This snippet trigger already exists."_s);
    ASSERT_EQ(store->snippets().size(), 1);
    EXPECT_EQ(store->snippets().first().content, u"Regards"_s);
}

// The export

TEST_F(LibraryActionsTest, ExportWritesEachDictationUnderItsDate) {
    ports.savePanel.answer = exportPath();
    const TranscriptRecord newer = record(u"Größer.\nZwei Zeilen 🎤"_s);
    TranscriptRecord older = record(u"Older."_s);
    older.createdAt = older.createdAt.addDays(-1);
    store->setHistory({newer, older});
    store->exportHistory();
    EXPECT_EQ(ports.savePanel.proposedFileNames, QStringList{u"Lorvane History.txt"_s});
    EXPECT_EQ(QString::fromUtf8(exported()), dateLabel(newer.createdAt) +
                                                 u"\nGrößer.\nZwei Zeilen 🎤\n\n---\n\n"_s +
                                                 dateLabel(older.createdAt) + u"\nOlder."_s);
    EXPECT_EQ(store->statusMessage(), u"History exported."_s);
    EXPECT_EQ(store->errorMessage(), QString());
}

TEST_F(LibraryActionsTest, EmptyHistoryIsExportedAsAnEmptyFile) {
    ports.savePanel.answer = exportPath();
    store->exportHistory();
    EXPECT_TRUE(QFileInfo::exists(exportPath()));
    EXPECT_EQ(exported(), QByteArray());
    EXPECT_EQ(store->statusMessage(), u"History exported."_s);
}

TEST_F(LibraryActionsTest, ExportReplacesWhatWasThereWhole) {
    ports.savePanel.answer = exportPath();
    QFile old(exportPath());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100'000, 'x'));
    old.close();
    store->exportHistory();
    EXPECT_EQ(exported(), QByteArray());
    EXPECT_EQ(QDir(ports.dataHome.path()).entryList(QDir::Files).size(), 1) << "something was left";
}

TEST_F(LibraryActionsTest, CancelledExportSaysNothing) {
    store->setHistory({record(u"one"_s)});
    store->exportHistory();
    EXPECT_EQ(ports.savePanel.proposedFileNames.size(), 1);
    EXPECT_TRUE(QDir(ports.dataHome.path()).entryList(QDir::Files).isEmpty());
    expectNoMessage();
}

TEST_F(LibraryActionsTest, FailedExportIsReportedWithItsReason) {
    ports.savePanel.answer = ports.dataHome.filePath(u"missing/history.txt"_s);
    store->setHistory({record(u"one"_s)});
    store->exportHistory();
    EXPECT_EQ(store->errorMessage(), u"Export failed: No such file or directory"_s);
    EXPECT_EQ(store->statusMessage(), QString());
}

TEST_F(LibraryActionsTest, FailedExportLeavesTheOldFile) {
    ports.savePanel.answer = u"/dev/full/none"_s;
    store->exportHistory();
    EXPECT_TRUE(store->errorMessage().startsWith(u"Export failed: "_s));
    // A folder stands where the file should go.
    ports.savePanel.answer = exportPath();
    QDir().mkpath(exportPath());
    store->exportHistory();
    EXPECT_TRUE(QFileInfo(exportPath()).isDir());
    EXPECT_TRUE(store->errorMessage().startsWith(u"Export failed: "_s));
}

TEST_F(LibraryActionsTest, ExportHasWhatWasDictatedWhileThePanelWasOpen) {
    ports.savePanel.answer = exportPath();
    ports.savePanel.whileOpen = [this] { dictate(u"late"_s); };
    store->exportHistory();
    EXPECT_TRUE(exported().endsWith("\nLate."));
    EXPECT_EQ(store->statusMessage(), u"History exported."_s);
}

// All of it is saved

TEST_F(LibraryActionsTest, EachActionReachesTheDisk) {
    const auto onDisk = [this] {
        clock().advance(250ms);
        return LocalRepository(ports.libraryPath()).load();
    };
    store->addVocabulary(u"kube ctl"_s, u"kubectl"_s);
    EXPECT_EQ(onDisk().vocabulary, store->vocabulary());
    store->addSnippet(u"sign off"_s, u"Regards"_s);
    EXPECT_EQ(onDisk().snippets, store->snippets());
    store->setHistory({record(u"one"_s), record(u"two"_s)});
    EXPECT_EQ(onDisk().history, store->history());
    store->deleteTranscript(store->history().first());
    EXPECT_EQ(onDisk().history.size(), 1);
    store->clearHistory();
    EXPECT_EQ(onDisk().history.size(), 0);
    store->deleteVocabulary(store->vocabulary().first());
    EXPECT_EQ(onDisk().vocabulary.size(), 0);
    store->deleteSnippet(store->snippets().first());
    EXPECT_EQ(onDisk().snippets.size(), 0);
    AppSettings settings = store->settings();
    settings.autoPaste = true;
    store->setSettings(settings);
    EXPECT_TRUE(onDisk().settings.autoPaste);
    EXPECT_EQ(onDisk().schemaVersion, 2);
}

TEST_F(LibraryActionsTest, EditsAreNotBarredByADictation) {
    press();
    ASSERT_TRUE(store->isBusy());
    store->addSnippet(u"sign off"_s, u"Regards"_s);
    EXPECT_EQ(store->snippets().size(), 1);
    clock().runUntilIdle();
}

} // namespace
} // namespace lorvane
