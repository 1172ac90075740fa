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

// Setup

TEST_F(AppLifecycleTest, FinishedSetupDoesNotComeBack) {
    ports.userDefaults.values.clear();
    makeStore();
    store->finishSetup();
    EXPECT_FALSE(store->isSetupPresented());
    makeStore();
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(AppLifecycleTest, GuideDoesNotOpenDuringADictation) {
    hold();
    store->showSetupGuide();
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(AppLifecycleTest, StepThatDoesNotExistBecomesTheFirst) {
    store->setSetupStepNumber(3);
    EXPECT_EQ(store->setupStep(), SetupStep::accessibility);
    store->setSetupStepNumber(7);
    EXPECT_EQ(store->setupStep(), SetupStep::welcome);
}

TEST_F(AppLifecycleTest, UndeterminedGrantPromptsAndADeniedOneOpensTheSystemsPage) {
    ports.permissions.microphone = 0;
    ports.permissions.microphoneAnswer = false;
    store->refreshPermissions();
    store->requestMicrophoneAccess();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.microphonePromptCount, 1);
    EXPECT_TRUE(ports.workspace.openedAddresses.isEmpty());
    store->requestMicrophoneAccess();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.microphonePromptCount, 1);
    EXPECT_EQ(ports.workspace.openedAddresses.size(), 1);
    EXPECT_FALSE(store->microphoneGranted());
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
