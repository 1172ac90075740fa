#include "Core/HoldToTalkState.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace lorvane {
namespace {

using Phase = HoldToTalkState::Phase;
using ReleaseAction = HoldToTalkState::ReleaseAction;

HoldToTalkState inPhase(Phase phase) {
    HoldToTalkState state;
    if (phase != Phase::idle)
        state.press();
    if (phase == Phase::recording || phase == Phase::finishing)
        state.recordingStarted();
    if (phase == Phase::finishing)
        state.release();
    EXPECT_EQ(state.phase(), phase);
    return state;
}

struct Cell {
    Phase before;
    Phase afterPress;
    bool pressResult;
    Phase afterStarted;
    bool startedResult;
    Phase afterRelease;
    ReleaseAction releaseResult;
    bool isHeld;
};

void PrintTo(const Cell &cell, std::ostream *out) {
    constexpr const char *names[] = {"Idle", "Preparing", "Recording", "Finishing"};
    *out << names[static_cast<int>(cell.before)];
}

class EveryPhase : public testing::TestWithParam<Cell> {};

TEST_P(EveryPhase, MeetsAPressAsTold) {
    HoldToTalkState state = inPhase(GetParam().before);
    EXPECT_EQ(state.press(), GetParam().pressResult);
    EXPECT_EQ(state.phase(), GetParam().afterPress);
}

TEST_P(EveryPhase, MeetsAStartedRecordingAsTold) {
    HoldToTalkState state = inPhase(GetParam().before);
    EXPECT_EQ(state.recordingStarted(), GetParam().startedResult);
    EXPECT_EQ(state.phase(), GetParam().afterStarted);
}

TEST_P(EveryPhase, MeetsAReleaseAsTold) {
    HoldToTalkState state = inPhase(GetParam().before);
    EXPECT_EQ(state.release(), GetParam().releaseResult);
    EXPECT_EQ(state.phase(), GetParam().afterRelease);
}

TEST_P(EveryPhase, IsIdleAfterAReset) {
    HoldToTalkState state = inPhase(GetParam().before);
    state.reset();
    EXPECT_EQ(state.phase(), Phase::idle);
    EXPECT_FALSE(state.isHeld());
}

TEST_P(EveryPhase, IsHeldOnlyWhileTheKeyIsDown) {
    EXPECT_EQ(inPhase(GetParam().before).isHeld(), GetParam().isHeld);
}

std::string phaseName(const testing::TestParamInfo<Cell> &cell) {
    return testing::PrintToString(cell.param);
}

INSTANTIATE_TEST_SUITE_P(
    HoldToTalk, EveryPhase,
    testing::Values(Cell{Phase::idle, Phase::preparing, true, Phase::idle, false, Phase::idle,
                         ReleaseAction::none, false},
                    Cell{Phase::preparing, Phase::preparing, false, Phase::recording, true,
                         Phase::idle, ReleaseAction::cancelPreparation, true},
                    Cell{Phase::recording, Phase::recording, false, Phase::recording, false,
                         Phase::finishing, ReleaseAction::finish, true},
                    Cell{Phase::finishing, Phase::finishing, false, Phase::finishing, false,
                         Phase::finishing, ReleaseAction::none, false}),
    phaseName);

TEST(HoldToTalk, StartsIdleAndReleasingItDoesNothing) {
    HoldToTalkState state;
    EXPECT_EQ(state.phase(), Phase::idle);
    EXPECT_FALSE(state.isHeld());
    EXPECT_EQ(state.release(), ReleaseAction::none);
    EXPECT_EQ(state.phase(), Phase::idle);
}

TEST(HoldToTalk, ASecondPressStartsNothing) {
    HoldToTalkState state;
    EXPECT_TRUE(state.press());
    EXPECT_FALSE(state.press());
    EXPECT_EQ(state.phase(), Phase::preparing);
}

TEST(HoldToTalk, ARecordingThatIsReadyAfterTheReleaseFindsNobodyOnTheKey) {
    HoldToTalkState state;
    state.press();
    EXPECT_EQ(state.release(), ReleaseAction::cancelPreparation);
    EXPECT_FALSE(state.recordingStarted());
    EXPECT_EQ(state.phase(), Phase::idle);
}

TEST(HoldToTalk, ARecordingStartsOnlyOnce) {
    HoldToTalkState state;
    state.press();
    EXPECT_TRUE(state.recordingStarted());
    EXPECT_FALSE(state.recordingStarted());
    EXPECT_EQ(state.phase(), Phase::recording);
}

TEST(HoldToTalk, OnlyTheFirstReleaseFinishes) {
    HoldToTalkState state;
    state.press();
    state.recordingStarted();
    EXPECT_EQ(state.release(), ReleaseAction::finish);
    EXPECT_FALSE(state.isHeld());
    EXPECT_EQ(state.release(), ReleaseAction::none);
}

TEST(HoldToTalk, APressWhileFinishingIsLostForGood) {
    HoldToTalkState state = inPhase(Phase::finishing);
    ShortcutKeyState key;
    EXPECT_TRUE(key.transition(true));
    EXPECT_FALSE(state.press());
    state.reset();
    EXPECT_EQ(state.phase(), Phase::idle);
    EXPECT_FALSE(key.transition(true)); // still down: no callback, no press
    EXPECT_TRUE(key.transition(false));
    EXPECT_EQ(state.release(), ReleaseAction::none);
    EXPECT_TRUE(key.transition(true));
    EXPECT_TRUE(state.press());
}

TEST(HoldToTalk, AResetInTheMiddleOfAHoldLeavesTheReleaseNothingToDo) {
    HoldToTalkState state = inPhase(Phase::preparing);
    state.reset();
    EXPECT_EQ(state.release(), ReleaseAction::none);
    EXPECT_EQ(state.phase(), Phase::idle);
}

TEST(HoldToTalk, IsEqualExactlyWhenThePhasesAre) {
    EXPECT_EQ(inPhase(Phase::recording), inPhase(Phase::recording));
    EXPECT_NE(inPhase(Phase::recording), inPhase(Phase::preparing));
    HoldToTalkState state = inPhase(Phase::finishing);
    state.reset();
    EXPECT_EQ(state, HoldToTalkState());
}

TEST(HoldToTalk, PhasesAndActionsCanBeHashedAndStandInOrder) {
    const std::unordered_set<Phase> phases{Phase::idle, Phase::preparing, Phase::recording,
                                           Phase::finishing};
    EXPECT_EQ(phases.size(), 4u);
    const std::unordered_set<ReleaseAction> actions{
        ReleaseAction::none, ReleaseAction::cancelPreparation, ReleaseAction::finish};
    EXPECT_EQ(actions.size(), 3u);
    EXPECT_LT(Phase::idle, Phase::preparing);
    EXPECT_LT(Phase::preparing, Phase::recording);
    EXPECT_LT(Phase::recording, Phase::finishing);
    EXPECT_LT(ReleaseAction::none, ReleaseAction::cancelPreparation);
    EXPECT_LT(ReleaseAction::cancelPreparation, ReleaseAction::finish);
}

TEST(ShortcutKey, StartsUpAndDropsAReleaseWithoutAPress) {
    ShortcutKeyState key;
    EXPECT_FALSE(key.isDown());
    EXPECT_FALSE(key.transition(false));
    EXPECT_FALSE(key.isDown());
}

TEST(ShortcutKey, LetsAPressThrough) {
    ShortcutKeyState key;
    EXPECT_TRUE(key.transition(true));
    EXPECT_TRUE(key.isDown());
}

TEST(ShortcutKey, DropsARepeatedPress) {
    ShortcutKeyState key;
    EXPECT_TRUE(key.transition(true));
    EXPECT_FALSE(key.transition(true));
    EXPECT_TRUE(key.isDown());
}

TEST(ShortcutKey, LetsTheReleaseOfAPressThrough) {
    ShortcutKeyState key;
    key.transition(true);
    EXPECT_TRUE(key.transition(false));
    EXPECT_FALSE(key.isDown());
}

} // namespace
} // namespace lorvane
