#include "Core/FirstLaunchSetup.h"

#include "Core/Printing.h"

#include <QMap>

#include <gtest/gtest.h>

#include <unordered_set>

namespace lorvane {
namespace {

/// What a store keeps when the program ends.
using Kept = QMap<QString, bool>;

class Store {
public:
    explicit Store(Kept &kept) : kept_(kept) {}
    bool boolean(const QString &key) const { return kept_.value(key); }
    void setBoolean(const QString &key, bool value) { kept_[key] = value; }

private:
    Kept &kept_;
};

TEST(RequiredSetup, NamesTheMicrophoneFirstWhateverSpeechIs) {
    EXPECT_EQ(RecordingAccess::requiredSetup(false, false), SetupStep::microphone);
    EXPECT_EQ(RecordingAccess::requiredSetup(false, true), SetupStep::microphone);
}

TEST(RequiredSetup, NamesSpeechWhenOnlySpeechIsMissing) {
    EXPECT_EQ(RecordingAccess::requiredSetup(true, false), SetupStep::speech);
}

TEST(RequiredSetup, NamesNothingWhenBothAreGranted) {
    EXPECT_EQ(RecordingAccess::requiredSetup(true, true), std::nullopt);
}

TEST(SetupSteps, HaveTheirRawValuesInTheOrderOfTheGuide) {
    EXPECT_EQ(static_cast<int>(SetupStep::welcome), 0);
    EXPECT_EQ(static_cast<int>(SetupStep::microphone), 1);
    EXPECT_EQ(static_cast<int>(SetupStep::speech), 2);
    EXPECT_EQ(static_cast<int>(SetupStep::accessibility), 3);
    EXPECT_EQ(static_cast<int>(SetupStep::practice), 4);
    EXPECT_EQ(std::unordered_set<SetupStep>({SetupStep::welcome, SetupStep::practice}).size(), 2u);
}

TEST(SetupSteps, ComeBackFromTheirRawValues) {
    for (int value = 0; value <= 4; ++value)
        EXPECT_EQ(static_cast<int>(setupStep(value)), value);
}

TEST(SetupSteps, AreWelcomeForAValueThatNoStepHas) {
    EXPECT_EQ(setupStep(7), SetupStep::welcome);
    EXPECT_EQ(setupStep(5), SetupStep::welcome);
    EXPECT_EQ(setupStep(-1), SetupStep::welcome);
}

TEST(FirstLaunch, PresentsTheGuideUntilItIsCompleted) {
    Kept kept;
    Store store(kept);
    EXPECT_TRUE(FirstLaunchSetup::shouldPresent(store));
    FirstLaunchSetup::complete(store);
    EXPECT_FALSE(FirstLaunchSetup::shouldPresent(store));
    const Store next(kept);
    EXPECT_FALSE(FirstLaunchSetup::shouldPresent(next));
}

TEST(FirstLaunch, PresentsTheGuideWhenTheBooleanIsFalse) {
    Kept kept{{FirstLaunchSetup::completionKey, false}};
    EXPECT_TRUE(FirstLaunchSetup::shouldPresent(Store(kept)));
}

TEST(FirstLaunch, KeepsNothingButOneBooleanUnderItsKey) {
    Kept kept;
    Store store(kept);
    FirstLaunchSetup::complete(store);
    EXPECT_EQ(kept, Kept({{QStringLiteral("Lorvane.didCompleteSetup"), true}}));
}

} // namespace
} // namespace lorvane
