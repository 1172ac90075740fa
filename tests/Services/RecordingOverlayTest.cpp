#include "Services/RecordingOverlay.h"

#include "Fakes/FakeOverlayPanel.h"
#include "Fakes/FakeScreens.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;

/// Two monitors side by side; the first has a panel of 30 at the top and a dock of 50 below.
const Screen left{QRect(0, 0, 1280, 800), QRect(0, 30, 1280, 720)};
const Screen right{QRect(1280, 0, 1920, 1080), QRect(1280, 0, 1920, 1080)};

class RecordingOverlayTest : public testing::Test {
protected:
    RecordingOverlayTest() {
        screens.allScreens = {left, right};
        screens.pointerPosition = QPoint(100, 100);
    }

    FakeScreens screens;
    FakeOverlayPanel panel;
    RecordingOverlay overlay{screens, panel};
    Meter &meter = *overlay.meter();
};

TEST_F(RecordingOverlayTest, BeforeTheFirstShowNothingIsVisibleAndTheMeterIsFlat) {
    EXPECT_FALSE(overlay.isVisible());
    EXPECT_EQ(meter.mode(), Mode::preparing);
    EXPECT_EQ(meter.samples(), QList<double>(34, 0));
    EXPECT_EQ(meter.duration(), 0);
    EXPECT_EQ(meter.detail(), u"Preparing microphone…"_qs);
}

TEST_F(RecordingOverlayTest, HidingBeforeTheFirstShowDoesNothing) {
    overlay.hide();
    EXPECT_EQ(panel.orderOutCount, 0);
}

TEST_F(RecordingOverlayTest, FeedingBeforeTheFirstShowOnlyFillsTheModel) {
    overlay.update(0.5, 3, u"Detail"_qs);
    EXPECT_EQ(meter.duration(), 3);
    EXPECT_EQ(meter.detail(), u"Detail"_qs);
    EXPECT_FALSE(overlay.isVisible());
    EXPECT_FALSE(panel.position);
}

TEST_F(RecordingOverlayTest, TheFirstShowPlacesTheCardAndOrdersItFront) {
    overlay.show(Mode::recording);
    EXPECT_EQ(meter.mode(), Mode::recording);
    EXPECT_TRUE(overlay.isVisible());
    EXPECT_EQ(panel.orderFrontCount, 1);
    // Middle of 0..1280 less 175; the dock's edge at 750 less 42 and the card's own 88.
    EXPECT_EQ(panel.position, QPoint(465, 620));
}

TEST_F(RecordingOverlayTest, TheCardAppearsOnTheSecondMonitorWithThePointerThere) {
    screens.pointerPosition = QPoint(1280, 1079);
    overlay.show(Mode::preparing);
    EXPECT_EQ(panel.position, QPoint(1280 + 960 - 175, 1080 - 42 - 88));
}

TEST_F(RecordingOverlayTest, APointerOnAPanelIsOnThatMonitorToo) {
    screens.allScreens = {right, left};
    screens.pointerPosition = QPoint(100, 10);
    overlay.show(Mode::preparing);
    EXPECT_EQ(panel.position, QPoint(465, 620));
}

TEST_F(RecordingOverlayTest, OutsideEveryFrameTheMainScreenCounts) {
    screens.allScreens = {right, left};
    screens.pointerPosition = QPoint(100, 900);
    overlay.show(Mode::preparing);
    EXPECT_EQ(panel.position, QPoint(1280 + 960 - 175, 1080 - 42 - 88));
}

TEST_F(RecordingOverlayTest, WithoutAnyScreenTheCardComesFrontWhereItWas) {
    panel.position = QPoint(7, 8);
    screens.allScreens.clear();
    overlay.show(Mode::preparing);
    EXPECT_EQ(panel.position, QPoint(7, 8));
    EXPECT_TRUE(overlay.isVisible());
}

TEST_F(RecordingOverlayTest, AChangeOfModeOnAVisibleCardKeepsPlaceAndHistory) {
    overlay.show(Mode::recording);
    overlay.update(0.5, 1, u"Recording"_qs);
    const QList<double> samples = meter.samples();
    screens.pointerPosition = QPoint(2000, 100);

    overlay.show(Mode::transcribing);

    EXPECT_EQ(meter.mode(), Mode::transcribing);
    EXPECT_EQ(meter.samples(), samples);
    EXPECT_EQ(panel.position, QPoint(465, 620));
    EXPECT_EQ(panel.orderFrontCount, 1);
}

TEST_F(RecordingOverlayTest, AHiddenCardComesBackWithoutHistoryInTheSameMode) {
    overlay.show(Mode::recording);
    overlay.update(0.5, 12, u"Recording"_qs);
    overlay.hide();
    EXPECT_FALSE(overlay.isVisible());
    EXPECT_EQ(meter.samples().last(), 0.5) << "hiding keeps the model";

    overlay.show(Mode::recording);

    EXPECT_EQ(meter.samples(), QList<double>(34, 0));
    EXPECT_EQ(meter.duration(), 12);
    EXPECT_EQ(meter.detail(), u"Recording"_qs);
    EXPECT_EQ(panel.orderFrontCount, 2);
}

TEST_F(RecordingOverlayTest, AHiddenCardComesBackOnTheScreenWithThePointer) {
    overlay.show(Mode::recording);
    overlay.hide();
    screens.pointerPosition = QPoint(2000, 100);
    overlay.show(Mode::recording);
    EXPECT_EQ(panel.position, QPoint(2065, 950));
}

TEST_F(RecordingOverlayTest, HidingTwiceIsHarmless) {
    overlay.show(Mode::recording);
    overlay.hide();
    overlay.hide();
    EXPECT_FALSE(overlay.isVisible());
}

TEST_F(RecordingOverlayTest, FeedingAHiddenCardFillsTheModel) {
    overlay.show(Mode::recording);
    overlay.hide();
    overlay.update(0.25, 9, u"Later"_qs);
    EXPECT_EQ(meter.samples().last(), 0.25);
    EXPECT_FALSE(overlay.isVisible());
}

TEST_F(RecordingOverlayTest, LevelsAreLimitedToZeroToOne) {
    overlay.show(Mode::recording);
    overlay.update(1.4, 0, {});
    EXPECT_EQ(meter.samples().last(), 1.0);
    overlay.update(-0.2, 0, {});
    EXPECT_EQ(meter.samples().last(), 0.0);
    EXPECT_EQ(meter.samples().at(32), 1.0) << "the history moves to the left";
}

TEST_F(RecordingOverlayTest, TheModesWithoutWaveformRunTheHistoryDownToFlat) {
    for (const Mode mode : {Mode::preparing, Mode::transcribing}) {
        overlay.show(Mode::recording);
        for (int i = 0; i < 34; ++i)
            overlay.update(0.9, 0, {});
        EXPECT_EQ(meter.samples(), QList<double>(34, 0.9));

        overlay.show(mode);
        for (int i = 0; i < 33; ++i)
            overlay.update(0.9, 0, {});
        EXPECT_EQ(meter.samples().first(), 0.9);
        overlay.update(0.9, 0, {});
        EXPECT_EQ(meter.samples(), QList<double>(34, 0));
    }
}

TEST_F(RecordingOverlayTest, ThePreviewShowsItsLevels) {
    overlay.show(Mode::preview);
    overlay.update(0.6, 0, {});
    EXPECT_EQ(meter.samples().last(), 0.6);
}

TEST_F(RecordingOverlayTest, TheHistoryKeeps34EntriesOldestFirst) {
    overlay.show(Mode::recording);
    for (int i = 0; i < 100; ++i) {
        overlay.update(i / 100.0, 0, {});
        ASSERT_EQ(meter.samples().size(), 34);
    }
    QList<double> expected(34);
    for (int i = 0; i < 34; ++i)
        expected[i] = (66 + i) / 100.0;
    EXPECT_EQ(meter.samples(), expected);
}

TEST_F(RecordingOverlayTest, TheSelfCheckAsksTheRealWindowOnceThereIsOne) {
    panel.refusesFocus = false;
    EXPECT_TRUE(overlay.preservesKeyboardFocus()) << "no card has been shown";
    overlay.show(Mode::recording);
    EXPECT_FALSE(overlay.preservesKeyboardFocus());
    panel.refusesFocus = true;
    EXPECT_TRUE(overlay.preservesKeyboardFocus());
}

TEST_F(RecordingOverlayTest, EachPropertyNotifiesItsReaders) {
    int mode = 0, samples = 0, duration = 0, detail = 0;
    QObject::connect(&meter, &Meter::modeChanged, &meter, [&] { ++mode; });
    QObject::connect(&meter, &Meter::samplesChanged, &meter, [&] { ++samples; });
    QObject::connect(&meter, &Meter::durationChanged, &meter, [&] { ++duration; });
    QObject::connect(&meter, &Meter::detailChanged, &meter, [&] { ++detail; });
    overlay.show(Mode::recording);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(samples, 1);
    overlay.update(0.1, 1, u"Now"_qs);
    EXPECT_EQ(samples, 2);
    EXPECT_EQ(duration, 1);
    EXPECT_EQ(detail, 1);
}

TEST_F(RecordingOverlayTest, TheCardSaysWhatEachModeIs) {
    struct Row {
        Mode mode;
        QString title;
        bool showsWaveform;
        QString label;
    };
    const QList<Row> rows{
        {Mode::preparing, u"Getting ready"_qs, false, u"Live microphone waveform"_qs},
        {Mode::recording, u"Recording"_qs, true, u"Live microphone waveform"_qs},
        {Mode::transcribing, u"Transcribing"_qs, false, u"Live microphone waveform"_qs},
        {Mode::preview, u"Preview · microphone off"_qs, true,
         u"Demo waveform; microphone is off"_qs},
    };
    for (const Row &row : rows) {
        overlay.show(row.mode);
        EXPECT_EQ(meter.title(), row.title);
        EXPECT_EQ(meter.showsWaveform(), row.showsWaveform);
        EXPECT_EQ(meter.accessibleLabel(), row.label);
    }
}

TEST_F(RecordingOverlayTest, TheTimerCountsWholeSecondsAndItsMinutesGoOnPastAnHour) {
    const QList<std::pair<double, QString>> rows{
        {0, u"00:00"_qs},    {59.9, u"00:59"_qs}, {60, u"01:00"_qs},
        {3600, u"60:00"_qs}, {4503, u"75:03"_qs}, {6000, u"100:00"_qs},
    };
    for (const auto &[duration, text] : rows) {
        overlay.update(0, duration, {});
        EXPECT_EQ(meter.timer(), text);
    }
}

TEST_F(RecordingOverlayTest, TheAccessibleValueIsTheLastLevelInWholePercent) {
    EXPECT_EQ(meter.accessibleValue(), u"0 percent"_qs);
    overlay.show(Mode::recording);
    overlay.update(0.256, 0, {});
    EXPECT_EQ(meter.accessibleValue(), u"25 percent"_qs);
    overlay.update(2, 0, {});
    EXPECT_EQ(meter.accessibleValue(), u"100 percent"_qs);
}

} // namespace
} // namespace lorvane
