#include "StoreFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using SetupStateTest = StoreFixture;

TEST_F(SetupStateTest, FinishedSetupDoesNotComeBack) {
    ports.userDefaults.values.clear();
    makeStore();
    store->finishSetup();
    EXPECT_FALSE(store->isSetupPresented());
    makeStore();
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(SetupStateTest, GuideDoesNotOpenDuringADictation) {
    hold();
    store->showSetupGuide();
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(SetupStateTest, StepThatDoesNotExistBecomesTheFirst) {
    store->setSetupStepNumber(3);
    EXPECT_EQ(store->setupStep(), SetupStep::accessibility);
    store->setSetupStepNumber(7);
    EXPECT_EQ(store->setupStep(), SetupStep::welcome);
}

TEST_F(SetupStateTest, UndeterminedGrantPromptsAndADeniedOneOpensTheSystemsPage) {
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

TEST_F(SetupStateTest, GuideThatWasLeftEarlyComesBackForALackOfAccessOnly) {
    ports.userDefaults.values.clear();
    ports.permissions.microphone = 0;
    makeStore();
    EXPECT_EQ(store->setupStep(), SetupStep::welcome);
    store->finishSetup();
    makeStore();
    EXPECT_FALSE(store->isSetupPresented());
    hold();
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
}

TEST_F(SetupStateTest, NewStoreKnowsTheGrants) {
    ports.permissions.microphone = 2;
    ports.permissions.speech = 2;
    ports.permissions.accessibility = false;
    makeStore();
    EXPECT_FALSE(store->microphoneGranted());
    EXPECT_FALSE(store->speechGranted());
    EXPECT_FALSE(store->accessibilityGranted());
    EXPECT_EQ(store->speechPermissionText(), u"Restricted by this Mac"_s);
}

TEST_F(SetupStateTest, EachSpeechStatusHasItsWords) {
    const QStringList words{u"Requested when you first dictate"_s,
                            u"Denied — enable in System Settings"_s, u"Restricted by this Mac"_s,
                            u"Allowed"_s, u"Unknown"_s};
    for (int status = 0; status < words.size(); ++status) {
        ports.permissions.speech = status;
        store->refreshPermissions();
        EXPECT_EQ(store->speechPermissionText(), words[status]);
        EXPECT_EQ(store->speechGranted(), status == 3);
    }
    for (int status = 0; status < 5; ++status) {
        ports.permissions.microphone = status;
        store->refreshPermissions();
        EXPECT_EQ(store->microphoneGranted(), status == 3);
    }
}

TEST_F(SetupStateTest, GuideOpensAtTheStepThatWasAskedFor) {
    QList<SetupStep> requested;
    QObject::connect(store.get(), &AppStore::setupRequested, [&] {
        EXPECT_TRUE(store->isSetupPresented());
        requested.append(store->setupStep());
    });
    ports.permissions.accessibility = false;
    store->showSetupGuide(static_cast<int>(SetupStep::accessibility));
    EXPECT_FALSE(store->accessibilityGranted()) << "it reads the grants first";
    store->showSetupGuide();
    EXPECT_EQ(requested, (QList{SetupStep::accessibility, SetupStep::welcome}));
}

TEST_F(SetupStateTest, GuideDoesNotOpenWhileADictationIsPreparedOrFinished) {
    press();
    store->showSetupGuide();
    clock().runUntilIdle();
    speak(1s);
    letGo();
    store->showSetupGuide();
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(SetupStateTest, SpeechIsAskedForLikeTheMicrophone) {
    ports.permissions.speech = 0;
    ports.permissions.speechAnswer = false;
    store->refreshPermissions();
    store->requestSpeechAccess();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.speechPromptCount, 1);
    EXPECT_TRUE(ports.workspace.openedAddresses.isEmpty());
    EXPECT_EQ(store->speechPermissionText(), u"Denied — enable in System Settings"_s);
    store->requestSpeechAccess();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.speechPromptCount, 1);
    EXPECT_EQ(ports.workspace.openedAddresses.size(), 1);
}

TEST_F(SetupStateTest, GrantThatIsGivenIsNotAskedForAgain) {
    ports.permissions.accessibility = false;
    store->requestMicrophoneAccess();
    store->requestSpeechAccess();
    clock().runUntilIdle();
    EXPECT_EQ(ports.permissions.microphonePromptCount, 0);
    EXPECT_EQ(ports.permissions.speechPromptCount, 0);
    EXPECT_TRUE(ports.workspace.openedAddresses.isEmpty());
    EXPECT_FALSE(store->accessibilityGranted()) << "a request reads the grants in any case";
}

TEST_F(SetupStateTest, AccessibilityIsRequestedFromTheSystem) {
    ports.permissions.accessibility = false;
    store->requestAccessibility();
    EXPECT_EQ(ports.permissions.accessibilityRequestCount, 1);
    EXPECT_FALSE(store->accessibilityGranted());
}

TEST_F(SetupStateTest, WindowIsUsableWhileAPromptStands) {
    ports.permissions.microphone = 0;
    ports.permissions.microphoneAnswer.reset();
    store->refreshPermissions();
    store->requestMicrophoneAccess();
    clock().runUntilIdle();
    hold();
    EXPECT_EQ(store->setupStep(), SetupStep::microphone);
    letGo();
    ports.permissions.answerMicrophone(true);
    clock().runUntilIdle();
    EXPECT_TRUE(store->microphoneGranted());
    hold();
    EXPECT_TRUE(store->isRecording());
}

} // namespace
} // namespace lorvane
