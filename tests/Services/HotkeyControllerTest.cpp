#include "Services/HotkeyController.h"

#include "Fakes/FakeHotKey.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

class HotkeyControllerTest : public testing::Test {
protected:
    FakeHotKey hotKey;
    HotkeyController controller{hotKey};
    int presses = 0;
    int releases = 0;

    void registerShortcut() {
        controller.registerShortcut([this] { ++presses; }, [this] { ++releases; });
    }
};

constexpr HotKeyId ours{HotkeyController::signature, 1};

TEST_F(HotkeyControllerTest, RegistersTheSignatureAndTheIdOne) {
    registerShortcut();
    EXPECT_TRUE(hotKey.isRegistered());
    EXPECT_EQ(hotKey.registeredId(), ours);
    EXPECT_EQ(HotkeyController::signature, quint32{'L' << 24 | 'R' << 16 | 'V' << 8 | 'N'});
}

TEST_F(HotkeyControllerTest, RepeatedPressesAndReleasesCountOnce) {
    registerShortcut();
    hotKey.press();
    hotKey.press();
    hotKey.release();
    hotKey.release();
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(releases, 1);
}

TEST_F(HotkeyControllerTest, ReleaseWithoutPressIsConsumedInSilence) {
    registerShortcut();
    EXPECT_EQ(controller.handle({ours, false}), 0);
    EXPECT_EQ(releases, 0);
}

TEST_F(HotkeyControllerTest, RepeatedPressIsConsumedNotPassedOn) {
    registerShortcut();
    EXPECT_EQ(controller.handle({ours, true}), 0);
    EXPECT_EQ(controller.handle({ours, true}), 0);
    EXPECT_EQ(presses, 1);
}

TEST_F(HotkeyControllerTest, EventsOfOtherHotKeysPassThroughUntouched) {
    registerShortcut();
    EXPECT_EQ(controller.handle({{HotkeyController::signature, 2}, true}), -9874);
    EXPECT_EQ(controller.handle({{0x41424344, 1}, true}), -9874);
    EXPECT_EQ(presses, 0);
    hotKey.press();
    EXPECT_EQ(presses, 1) << "the key state was changed by an event of another hot key";
}

TEST_F(HotkeyControllerTest, SecondRegistrationReplacesTheFirst) {
    registerShortcut();
    int newPresses = 0;
    controller.registerShortcut([&] { ++newPresses; }, [] {});
    hotKey.press();
    EXPECT_EQ(presses, 0);
    EXPECT_EQ(newPresses, 1);
    EXPECT_EQ(hotKey.unregisterCount, 1);
}

TEST_F(HotkeyControllerTest, KeyHeldThroughTheRegistrationFiresWithItsNextPress) {
    registerShortcut();
    hotKey.press();
    registerShortcut();
    hotKey.press();
    EXPECT_EQ(presses, 2);
}

TEST_F(HotkeyControllerTest, FailedRegistrationTellsTheStatusAndLeavesNothingBehind) {
    hotKey.status = -9878;
    try {
        registerShortcut();
        FAIL() << "no error";
    } catch (const HotkeyController::HotkeyError &error) {
        EXPECT_EQ(error.status, -9878);
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("Could not register Control–Option–Space (error -9878). Another "
                                 "application may be using it."));
    }
    EXPECT_FALSE(hotKey.isRegistered());
    controller.handle({ours, true});
    EXPECT_EQ(presses, 0) << "the callbacks were kept";
}

TEST_F(HotkeyControllerTest, UnregisteringForgetsTheHeldKeyAndTheCallbacks) {
    registerShortcut();
    hotKey.press();
    controller.unregister();
    EXPECT_FALSE(hotKey.isRegistered());
    registerShortcut();
    hotKey.press();
    EXPECT_EQ(presses, 2);
}

TEST_F(HotkeyControllerTest, UnregisteringWithoutRegistrationCallsNothing) {
    controller.unregister();
    EXPECT_EQ(hotKey.unregisterCount, 0);
}

TEST_F(HotkeyControllerTest, DestructionGivesTheHotKeyBack) {
    {
        HotkeyController other(hotKey);
        other.registerShortcut([] {}, [] {});
    }
    EXPECT_FALSE(hotKey.isRegistered());
}

} // namespace
} // namespace lorvane
