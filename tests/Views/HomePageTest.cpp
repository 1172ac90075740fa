#include "Views/Dictation/HomeModel.h"
#include "Views/Shell/MainWindow.h"

#include "ViewFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

TEST(HomeModelTest, DurationsAreWholeMinutesOrSecondsBelowOne) {
    const QList<std::pair<double, QString>> rows{
        {0, u"0s"_qs},   {59.9, u"59s"_qs}, {60, u"1m"_qs},
        {119, u"1m"_qs}, {3599, u"59m"_qs}, {10800, u"180m"_qs},
    };
    for (const auto &[seconds, label] : rows)
        EXPECT_EQ(HomeModel::durationLabel(seconds), label);
}

TEST(HomeModelTest, ABarTakesItsShareOfTheLevel) {
    EXPECT_DOUBLE_EQ(HomeModel::barHeight(0, 1), 12.5);
    EXPECT_DOUBLE_EQ(HomeModel::barHeight(0, 0.5), 8.75);
    for (int bar = 0; bar < 24; ++bar) {
        EXPECT_GE(HomeModel::barShare(bar), 0.25);
        EXPECT_LE(HomeModel::barShare(bar), 1.0);
        EXPECT_EQ(HomeModel::barHeight(bar, 1.7), HomeModel::barHeight(bar, 1));
        EXPECT_EQ(HomeModel::barHeight(bar, -0.3), 5);
    }
    EXPECT_NEAR(HomeModel::barShare(1), 0.25 + 0.75 * 0.99166, 1e-4);
    EXPECT_EQ(HomeModel::barShares().size(), 24);
}

class HomePageTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        window = std::make_unique<MainWindow>(engine, *store);
        window->open();
    }
    void TearDown() override {
        window.reset();
        ViewFixture::TearDown();
    }

    std::unique_ptr<MainWindow> window;
};

TEST_F(HomePageTest, AnEmptyLibraryInvitesToAFirstDictation) {
    const QStringList seen = names();
    for (
        const QString &text :
        {u"YOUR VOICE, IN WRITING"_qs, u"A little less typing."_qs,
         u"Speak naturally. Make room for your next good idea."_qs, u"Let your words flow."_qs,
         u"Hold a shortcut. Speak. Release to paste."_qs, u"DICTATION"_qs, u"Start dictation"_qs,
         u"Click to start, or hold"_qs, u"⌃  ⌥  Space"_qs, u"WORDS CAPTURED"_qs,
         u"THOUGHTS SAVED"_qs, u"TIME DICTATING"_qs, u"0s"_qs, u"Your latest thoughts"_qs,
         u"It starts with a thought."_qs,
         u"Your completed dictations will appear here. Tap the microphone above to make your first one."_qs,
         u"Saved on this Mac · Speech recognition provided by Apple"_qs})
        EXPECT_TRUE(seen.contains(text)) << text.toStdString();
    EXPECT_EQ(seen.count(u"0"_qs), 2);
    for (const QString &text : {u"● LIVE"_qs, u"Cancel"_qs, u"Copy text"_qs, u"Listening…"_qs,
                                u"Preparing your words…"_qs, u"Finish dictation"_qs})
        EXPECT_FALSE(seen.contains(text)) << text.toStdString();
}

TEST_F(HomePageTest, AHeldShortcutAsksToKeepHolding) {
    hold();
    speak(1s);
    const QStringList seen = names();
    for (const QString &text :
         {u"Go on. We’re listening."_qs,
          u"Keep holding the shortcut. Release to transcribe and paste."_qs, u"● LIVE"_qs,
          u"Finish dictation"_qs, u"Microphone audio level"_qs, u"Listening…"_qs, u"Cancel"_qs})
        EXPECT_TRUE(seen.contains(text)) << text.toStdString();
    EXPECT_FALSE(seen.contains(u"Click to start, or hold"_qs));
    EXPECT_TRUE(isEnabled(u"Finish dictation"_qs));
}

TEST_F(HomePageTest, TheButtonStartsAndFinishesARecording) {
    ASSERT_TRUE(activate(u"Start dictation"_qs));
    clock().runUntilIdle();
    EXPECT_TRUE(store->isRecording());
    EXPECT_TRUE(shows(u"Speak clearly, then finish when you’re ready."_qs));

    speak(1s);
    ASSERT_TRUE(activate(u"Finish dictation"_qs));
    clock().runUntilIdle();
    EXPECT_FALSE(store->isRecording());
}

TEST_F(HomePageTest, CancelThrowsTheRecordingAway) {
    hold();
    speak(1s);
    ASSERT_TRUE(activate(u"Cancel"_qs));
    clock().runUntilIdle();
    EXPECT_FALSE(store->isRecording());
    EXPECT_TRUE(shows(u"Start dictation"_qs));
}

TEST_F(HomePageTest, WhileTheWordsArePreparedTheButtonIsOutOfUse) {
    hold();
    speak(1s);
    letGo();
    ASSERT_TRUE(store->isBusy());
    EXPECT_TRUE(shows(u"Preparing your words…"_qs));
    EXPECT_FALSE(isEnabled(u"Start dictation"_qs));
    activate(u"Start dictation"_qs);
    clock().runUntilIdle();
    EXPECT_FALSE(store->isRecording());
}

TEST_F(HomePageTest, AFinalTranscriptStandsInPlaceOfTheLatestThought) {
    dictate(u"hello there"_qs);
    ASSERT_TRUE(store->hasCompletedTranscript());
    EXPECT_TRUE(shows(store->displayedTranscript()));
    EXPECT_FALSE(shows(u"Your latest thoughts"_qs));
    EXPECT_EQ(names().count(u"Copy text"_qs), 1);

    ports.pasteboard.setText(u"other"_qs);
    ASSERT_TRUE(activate(u"Copy text"_qs));
    EXPECT_EQ(ports.pasteboard.text, store->displayedTranscript());

    hold();
    EXPECT_TRUE(shows(u"Your latest thoughts"_qs)) << "the transcript is no longer a final one";
}

TEST_F(HomePageTest, TheNewestRecordIsShownWithItsDateAndWords) {
    QList<TranscriptRecord> history;
    for (int i = 0; i < 1200; ++i) {
        TranscriptRecord record;
        record.createdAt = QDateTime({2026, 3, 14}, {15, 9}, Qt::UTC);
        record.text = i == 0 ? u"newest"_qs : u"one older record"_qs;
        record.duration = 3;
        history.append(record);
    }
    store->setHistory(history);
    const QStringList seen = names();
    EXPECT_TRUE(seen.contains(u"newest"_qs));
    EXPECT_TRUE(seen.contains(u"1 words"_qs)) << "always the plural";
    EXPECT_TRUE(seen.contains(u"3,598"_qs)) << "grouped";
    EXPECT_TRUE(seen.contains(u"1200"_qs)) << "not grouped";
    EXPECT_TRUE(seen.contains(u"60m"_qs));
    EXPECT_FALSE(seen.filter(u"Mar 14, 2026"_qs).isEmpty());
    EXPECT_FALSE(seen.contains(u"It starts with a thought."_qs));
}

} // namespace
} // namespace lorvane
