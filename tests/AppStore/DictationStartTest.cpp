#include "StoreFixture.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Phase = HoldToTalkState::Phase;

using DictationStartTest = DictationTest;

// Starts that fail

TEST_F(DictationStartTest, MissingGrantOpensTheGuideAndReportsNoFailure) {
    int requests = 0;
    QObject::connect(store.get(), &AppStore::setupRequested, store.get(), [&] { ++requests; });
    ports.permissions.speech = 1;
    hold();
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::speech);
    ports.permissions.microphone = 2;
    letGo();
    hold();
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    EXPECT_EQ(store->statusMessage(), QString());
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(ports.audioInput.startCount, 0);
    letGo();
    expectIdle();
}

TEST_F(DictationStartTest, GrantThatIsRefusedDuringTheStartOpensTheGuide) {
    press();
    ports.permissions.microphone = 2;
    clock().runUntilIdle();
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_EQ(store->statusMessage(), QString());
    expectIdle();
}

TEST_F(DictationStartTest, MissingInputShowsItsWords) {
    ports.audioInput.nativeFormat = {};
    hold();
    EXPECT_EQ(store->errorMessage(),
              u"No microphone input is available. Check your audio input in System Settings."_s);
    EXPECT_EQ(store->statusMessage(), QString());
    expectIdle();
    letGo();
    expectIdle();
}

TEST_F(DictationStartTest, NextStartClearsTheErrorOfTheLast) {
    ports.audioInput.startError = u"The source is busy"_s;
    hold();
    EXPECT_EQ(store->errorMessage(), u"The source is busy"_s);
    letGo();
    ports.audioInput.startError.reset();
    hold();
    EXPECT_EQ(store->errorMessage(), QString());
    EXPECT_TRUE(store->isRecording());
}

TEST_F(DictationStartTest, LanguageWithoutAModelShowsItsWords) {
    AppSettings settings = store->settings();
    settings.languageIdentifier = u"de-DE"_s;
    store->setSettings(settings);
    hold();
    EXPECT_EQ(store->errorMessage(),
              u"Speech recognition is unavailable for this language. Try another language or check "
              "your connection."_s);
    EXPECT_FALSE(store->isSetupPresented());
    expectIdle();
}

TEST_F(DictationStartTest, SetupNeverMakesTheStoreBusy) {
    bool wasBusy = false;
    QObject::connect(store.get(), &AppStore::isBusyChanged,
                     [&] { wasBusy = wasBusy || store->isBusy(); });
    ports.permissions.microphone = 2;
    press();
    EXPECT_EQ(store->holdPhase(), Phase::idle);
    clock().runUntilIdle();
    EXPECT_FALSE(wasBusy);
}

TEST_F(DictationStartTest, GrantsAreReadBeforeAStartAndAfterIt) {
    ports.permissions.accessibility = false;
    press();
    EXPECT_FALSE(store->accessibilityGranted());
    ports.permissions.accessibility = true;
    clock().runUntilIdle();
    EXPECT_TRUE(store->accessibilityGranted());
    // A start that fails reads them as well.
    letGo();
    clock().advance(1s);
    ports.audioInput.startError = u"The source is busy"_s;
    press();
    ports.permissions.accessibility = false;
    clock().runUntilIdle();
    EXPECT_FALSE(store->accessibilityGranted());
}

} // namespace
} // namespace lorvane
