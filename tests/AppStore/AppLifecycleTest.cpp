#include "StoreFixture.h"

#include "Core/LocalRepository.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

class AppLifecycleTest : public StoreFixture {
protected:
    QByteArray libraryBytes() const {
        QFile file(ports.libraryPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void writeLibrary(const QByteArray &bytes) {
        QDir().mkpath(QFileInfo(ports.libraryPath()).path());
        QFile file(ports.libraryPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

// Creation

TEST_F(AppLifecycleTest, FirstStartHasAnEmptyLibraryAndTheGuide) {
    ports.userDefaults.values.clear();
    makeStore();
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::welcome);
    EXPECT_FALSE(QFileInfo::exists(ports.libraryPath()));
}

TEST_F(AppLifecycleTest, LibraryThatCannotBeReadIsNeverOverwritten) {
    const QByteArray bytes = R"({"schemaVersion": 3, "history": [], "scratchpad": "",
        "settings": {"autoPaste": false, "languageIdentifier": "en-AU", "removeFillers": true,
        "smartPunctuation": true}, "snippets": [], "vocabulary": []})";
    writeLibrary(bytes);
    makeStore();
    EXPECT_EQ(store->errorMessage(),
              u"Could not load the library: Library version 3 is unsupported. Your existing "
              "library was left untouched. Saving is disabled to preserve the existing file. See "
              "README for recovery."_s);
    dictate(u"hello"_s);
    EXPECT_EQ(store->historyCount(), 1);
    store->setScratchpad(u"edited"_s);
    clock().advance(10s);
    store->shutdown();
    EXPECT_EQ(libraryBytes(), bytes);
}

TEST_F(AppLifecycleTest, UserDefaultsThatCannotBeReadAreToldOfUnlessTheLibraryCannotEither) {
    ports.userDefaults.values.clear();
    ports.userDefaults.error = u"“lorvane.conf” is not a settings file."_s;
    makeStore();
    EXPECT_EQ(store->errorMessage(),
              u"Could not load the state of setup: “lorvane.conf” is not a settings file. Saving "
              "it is disabled to preserve the existing file. See README for recovery."_s);
    EXPECT_TRUE(store->isSetupPresented());
    store->finishSetup();
    EXPECT_FALSE(store->isSetupPresented());

    writeLibrary("rubbish");
    makeStore();
    EXPECT_TRUE(store->errorMessage().startsWith(u"Could not load the library: "));
}

TEST_F(AppLifecycleTest, LibraryIsTakenOverWhole) {
    AppSnapshot saved;
    saved.history = {{QUuid::createUuid(), QDateTime({2026, 3, 1}, {8, 0}, Qt::UTC), u"one"_s, 2}};
    saved.vocabulary = {VocabularyEntry(u"kube ctl"_s, u"kubectl"_s)};
    saved.snippets = {{.trigger = u"sign off"_s, .content = u"Regards"_s}};
    saved.scratchpad = u"notes"_s;
    saved.settings.autoPaste = true;
    LocalRepository(ports.libraryPath()).save(saved);
    makeStore();
    EXPECT_EQ(store->history(), saved.history);
    EXPECT_EQ(store->vocabulary(), saved.vocabulary);
    EXPECT_EQ(store->snippets(), saved.snippets);
    EXPECT_EQ(store->scratchpad(), saved.scratchpad);
    EXPECT_EQ(store->settings(), saved.settings);
    EXPECT_EQ(store->errorMessage(), QString());
}

TEST_F(AppLifecycleTest, LibraryWithoutAPlaceIsKeptInMemory) {
    QFile inTheWay(ports.dataHome.filePath(u"file"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    qputenv("XDG_DATA_HOME", (inTheWay.fileName() + u"/data"_s).toUtf8());
    makeStore();
    EXPECT_TRUE(store->errorMessage().startsWith(u"Could not load the library: "_s));
    EXPECT_TRUE(store->errorMessage().endsWith(
        u". Saving is disabled to preserve the existing file. See README for recovery."_s));
    store->setScratchpad(u"notes"_s);
    store->dismissErrorMessage();
    clock().advance(1s);
    EXPECT_EQ(store->scratchpad(), u"notes"_s);
    EXPECT_EQ(store->errorMessage(), QString()) << "nothing tries to save";
}

TEST_F(AppLifecycleTest, ShortcutThatAnotherApplicationHoldsIsReported) {
    ports.hotKey.status = 10;
    makeStore();
    EXPECT_EQ(store->statusMessage(), u"Could not register Control–Option–Space (error 10). "
                                      "Another application may be using it."_s);
    store->toggleRecording();
    clock().runUntilIdle();
    EXPECT_TRUE(store->isRecording());
}

TEST_F(AppLifecycleTest, ActivationOfAnyApplicationRefreshesTheGrants) {
    ports.permissions.accessibility = false;
    ports.permissions.speech = 1;
    EXPECT_TRUE(store->accessibilityGranted());
    ports.workspace.bringForward({QCoreApplication::applicationPid(), 9, 9});
    clock().runUntilIdle();
    EXPECT_FALSE(store->accessibilityGranted());
    EXPECT_EQ(store->speechPermissionText(), u"Denied — enable in System Settings"_s);
}

// Autosave

TEST_F(AppLifecycleTest, LoadingCausesNoSave) {
    clock().advance(10s);
    EXPECT_FALSE(QFileInfo::exists(ports.libraryPath()));
}

TEST_F(AppLifecycleTest, ChangesAreSavedAfterAQuarterOfASecondOfQuiet) {
    for (int i = 0; i < 5; ++i) {
        store->setScratchpad(QString::number(i));
        clock().advance(250ms - 1ns);
        EXPECT_FALSE(QFileInfo::exists(ports.libraryPath())) << "saved while typing went on";
    }
    clock().advance(1ns);
    EXPECT_EQ(LocalRepository(ports.libraryPath()).load().scratchpad, u"4"_s);
}

TEST_F(AppLifecycleTest, FailedSaveIsReportedAndTheNextChangeTriesAgain) {
    const QString folder = QFileInfo(ports.libraryPath()).path();
    writeLibrary("{}");
    QDir(folder).removeRecursively();
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    store->setScratchpad(u"one"_s);
    clock().advance(250ms);
    EXPECT_TRUE(store->errorMessage().startsWith(u"Could not save the library: "_s));
    inTheWay.remove();
    store->setScratchpad(u"two"_s);
    clock().advance(250ms);
    EXPECT_EQ(LocalRepository(ports.libraryPath()).load().scratchpad, u"two"_s);
}

// Shutdown

TEST_F(AppLifecycleTest, ShutdownKeepsTheAudioOfAnInterruptedDictation) {
    hold();
    speak(1s);
    store->shutdown();
    EXPECT_TRUE(QFileInfo::exists(store->recoveryAudioURL()));
    EXPECT_EQ(store->historyCount(), 0);
    EXPECT_FALSE(ports.overlayPanel.visible);
    EXPECT_FALSE(ports.hotKey.isRegistered());
    EXPECT_TRUE(QFileInfo::exists(ports.libraryPath()));
}

TEST_F(AppLifecycleTest, ShutdownSavesWhatTheAutosaveStillWaitsFor) {
    store->setScratchpad(u"the last word"_s);
    store->shutdown();
    EXPECT_EQ(LocalRepository(ports.libraryPath()).load().scratchpad, u"the last word"_s);
}

TEST_F(AppLifecycleTest, ShutdownEndsAStartThatIsUnderWay) {
    press();
    store->shutdown();
    clock().runUntilIdle();
    EXPECT_EQ(ports.audioInput.startCount, 0);
    EXPECT_FALSE(store->isBusy());
    EXPECT_FALSE(ports.overlayPanel.visible);
    EXPECT_TRUE(ports.recordingFolders().isEmpty());
}

TEST_F(AppLifecycleTest, ShutdownEndsAPreview) {
    store->previewRecordingIndicator();
    clock().advance(1s);
    store->shutdown();
    clock().advance(10s);
    EXPECT_FALSE(ports.overlayPanel.visible);
    EXPECT_EQ(clock().timerCount(), 0);
}

TEST_F(AppLifecycleTest, ShutdownCanRunThreeTimes) {
    hold();
    speak(1s);
    for (int i = 0; i < 3; ++i)
        store->shutdown();
    EXPECT_EQ(ports.recordingFolders().size(), 1);
    EXPECT_TRUE(QFileInfo::exists(store->recoveryAudioURL()));
}

TEST_F(AppLifecycleTest, ShutdownDuringAFinishAddsNoRecord) {
    hold();
    speak(1s);
    letGo();
    store->shutdown();
    clock().runUntilIdle();
    EXPECT_EQ(ports.keyboard.pasteCount, 0);
    EXPECT_EQ(ports.recordingFolders().size(), 1);
}

} // namespace
} // namespace lorvane
