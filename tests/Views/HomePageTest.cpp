#include "Views/Dictation/HomeModel.h"
#include "Views/Kit/Formatting.h"

#include "PageFixture.h"

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
    EXPECT_EQ(HomeModel::barOpacities().size(), 24);
    EXPECT_DOUBLE_EQ(HomeModel::barOpacities().first(), 0.45 + 0.25 * 0.55);
}

const QStringList homeHead{u"YOUR VOICE, IN WRITING"_qs, u"A little less typing."_qs,
                           u"Speak naturally. Make room for your next good idea."_qs};
const QStringList idleCard{u"Let your words flow."_qs,
                           u"Hold a shortcut. Speak. Release to paste."_qs,
                           u"DICTATION"_qs,
                           u"Start dictation"_qs,
                           u"Click to start, or hold"_qs,
                           u"⌃  ⌥  Space"_qs};
const QStringList preparingCard{u"Let your words flow."_qs,
                                u"Hold a shortcut. Speak. Release to paste."_qs, u"DICTATION"_qs,
                                u"Start dictation (out)"_qs, u"Preparing your words…"_qs};
const QStringList finalButtons{u"Copy text"_qs, u"View history"_qs};
const QStringList latest{u"Your latest thoughts"_qs, u"View history"_qs};
const QStringList noThoughts{
    u"It starts with a thought."_qs,
    u"Your completed dictations will appear here. Tap the microphone above to make your first one."_qs};
const QString footnote = u"Saved on this Mac · Speech recognition provided by Apple"_qs;

class HomePageTest : public PageFixture {
protected:
    void SetUp() override {
        PageFixture::SetUp();
        window->open();
    }

    static QStringList recordingCard(const QString &hint) {
        return {u"Go on. We’re listening."_qs,
                hint,
                u"● LIVE"_qs,
                u"Finish dictation"_qs,
                meter,
                u"Listening…"_qs,
                u"Cancel"_qs};
    }
    static QStringList statistics(const QString &words, const QString &thoughts,
                                  const QString &time) {
        return {words, u"WORDS CAPTURED"_qs, thoughts, u"THOUGHTS SAVED"_qs,
                time,  u"TIME DICTATING"_qs};
    }
    static QStringList thought(const TranscriptRecord &record) {
        return {dateLabel(record.createdAt), u"%1 words"_qs.arg(record.wordCount()), record.text,
                u"Copy text"_qs};
    }
    /// The banner and the page below it.
    QStringList below(const QStringList &page) const {
        const QString message = store->statusMessage();
        if (message.isEmpty())
            return page;
        return QStringList{message, message, u"Dismiss message"_qs} + page;
    }
    const QStringList none = statistics(u"0"_qs, u"0"_qs, u"0s"_qs);

    inline static const QString meter = u"Microphone audio level"_qs;
    inline static const QString holdHint =
        u"Keep holding the shortcut. Release to transcribe and paste."_qs;
    inline static const QString buttonHint = u"Speak clearly, then finish when you’re ready."_qs;
};

TEST_F(HomePageTest, AnEmptyLibraryInvitesToAFirstDictation) {
    EXPECT_EQ(page(), homeHead + idleCard + none + latest + noThoughts + QStringList{footnote});
}

TEST_F(HomePageTest, AHeldShortcutAsksToKeepHolding) {
    hold();
    speak(1s);
    EXPECT_EQ(page(), below(homeHead + recordingCard(holdHint) + none + latest + noThoughts +
                            QStringList{footnote}));
}

TEST_F(HomePageTest, TheLiveTextStandsInTheCardWithoutButtons) {
    hold();
    speak(1s);
    ports.speech.liveRequests().back()->give(FakeSpeech::result(u"live words"_qs, false));
    clock().runUntilIdle();
    EXPECT_EQ(page(), below(homeHead + recordingCard(holdHint) + QStringList{u"live words"_qs} +
                            none + latest + noThoughts + QStringList{footnote}));
}

TEST_F(HomePageTest, TheButtonStartsAndFinishesARecording) {
    ASSERT_TRUE(activate(u"Start dictation"_qs));
    clock().runUntilIdle();
    EXPECT_TRUE(store->isRecording());
    EXPECT_EQ(page(), below(homeHead + recordingCard(buttonHint) + none + latest + noThoughts +
                            QStringList{footnote}));

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
    EXPECT_EQ(page(),
              below(homeHead + idleCard + none + latest + noThoughts + QStringList{footnote}));
}

TEST_F(HomePageTest, WhileTheWordsArePreparedTheButtonIsOutOfUse) {
    hold();
    speak(1s);
    letGo();
    ASSERT_TRUE(store->isBusy());
    EXPECT_EQ(page(),
              below(homeHead + preparingCard + none + latest + noThoughts + QStringList{footnote}));
    activate(u"Start dictation"_qs);
    clock().runUntilIdle();
    EXPECT_FALSE(store->isRecording());
}

TEST_F(HomePageTest, AFinalTranscriptStandsInPlaceOfTheLatestThought) {
    dictate(u"hello there"_qs);
    ASSERT_TRUE(store->hasCompletedTranscript());
    const QString text = store->displayedTranscript();
    const QStringList filled = statistics(u"2"_qs, u"1"_qs, u"1s"_qs);
    EXPECT_EQ(page(), below(homeHead + idleCard + QStringList{text} + finalButtons + filled +
                            QStringList{footnote}));

    ports.pasteboard.setText(u"other"_qs);
    ASSERT_TRUE(activate(u"Copy text"_qs));
    EXPECT_EQ(ports.pasteboard.text, text);

    hold();
    EXPECT_EQ(page(), below(homeHead + recordingCard(holdHint) + filled + latest +
                            thought(store->history().first()) + QStringList{footnote}))
        << "the transcript is no longer a final one";
}

TEST_F(HomePageTest, AFinalTranscriptIsNotCopiedWhileItIsDelivered) {
    hold();
    speak(1s);
    letGo();
    answer(u"hello there"_qs);
    ASSERT_TRUE(store->hasCompletedTranscript());
    ASSERT_TRUE(store->isBusy()) << "the paste takes its time";
    EXPECT_EQ(page(), below(homeHead + preparingCard +
                            QStringList{store->displayedTranscript(), u"Copy text (out)"_qs,
                                        u"View history"_qs} +
                            statistics(u"2"_qs, u"1"_qs, u"1s"_qs) + QStringList{footnote}));
}

TEST_F(HomePageTest, TheFinalTranscriptLeadsToTheHistory) {
    dictate(u"hello there"_qs);
    ASSERT_TRUE(activate(u"View history"_qs));
    EXPECT_TRUE(shows(u"1 dictation"_qs));
}

TEST_F(HomePageTest, TheNewestRecordIsShownWithItsDateAndWords) {
    QList<TranscriptRecord> history;
    for (int i = 0; i < 1200; ++i)
        history.append(record(i == 0 ? u"newest"_qs : u"one older record"_qs));
    store->setHistory(history);
    const TranscriptRecord &newest = store->history().first();
    EXPECT_EQ(page(), homeHead + idleCard + statistics(u"3,598"_qs, u"1200"_qs, u"60m"_qs) +
                          latest + thought(newest) + QStringList{footnote})
        << "the words are grouped, the records aren't";
    EXPECT_TRUE(shows(u"1 words"_qs)) << "always the plural";
    ASSERT_TRUE(activate(u"Copy text"_qs));
    EXPECT_EQ(ports.pasteboard.text, u"newest"_qs);
}

} // namespace
} // namespace lorvane
