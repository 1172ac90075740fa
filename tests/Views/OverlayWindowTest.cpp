#include "Views/Overlay/OverlayWindow.h"

#include "LookFixture.h"

#include <QEasingCurve>
#include <QQuickView>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;

class OverlayWindowTest : public LookFixture {
protected:
    void SetUp() override { panel.setMeter(*overlay.meter()); }
    void TearDown() override {}

    static QQuickView *card() {
        for (QWindow *window : QGuiApplication::topLevelWindows())
            if (window->title() == u"Lorvane Recording Indicator")
                return qobject_cast<QQuickView *>(window);
        return nullptr;
    }

    OverlayWindow panel{engine};
    RecordingOverlay overlay{ports.screens, panel};
};

TEST_F(OverlayWindowTest, TheWindowIsReadyBeforeItIsShown) {
    ASSERT_NE(card(), nullptr);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(card()->size(), QSize(350, 88));
    EXPECT_EQ(panel.size(), card()->size());
}

TEST_F(OverlayWindowTest, TheWindowTakesNeitherFocusNorMouseNorAFrame) {
    overlay.show(Mode::recording);
    for (const Qt::WindowType flag :
         {Qt::WindowDoesNotAcceptFocus, Qt::WindowTransparentForInput, Qt::FramelessWindowHint,
          Qt::WindowStaysOnTopHint, Qt::X11BypassWindowManagerHint})
        EXPECT_TRUE(card()->flags().testFlag(flag)) << flag;
    EXPECT_TRUE(overlay.preservesKeyboardFocus());
    EXPECT_EQ(card()->color(), QColor(Qt::transparent));

    card()->setFlag(Qt::WindowDoesNotAcceptFocus, false);
    EXPECT_FALSE(overlay.preservesKeyboardFocus()) << "it reads the real flags";
}

TEST_F(OverlayWindowTest, ItIsShownWhereItWasPutAndHiddenAgain) {
    panel.setPosition(QPoint(33, 44));
    panel.orderFront();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(card()->position(), QPoint(33, 44));
    panel.orderOut();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_NE(card(), nullptr) << "it is kept";
}

TEST_F(OverlayWindowTest, TheWaveformIsReadWithItsPercentAndTheDetailIsNotShown) {
    overlay.show(Mode::recording);
    overlay.update(0.256, 61, u"Recording"_qs);
    EXPECT_EQ(names(), (QStringList{u"Recording"_qs, u"01:01"_qs, u"Live microphone waveform"_qs}));
    EXPECT_EQ(find(u"Live microphone waveform"_qs)->text(QAccessible::Description),
              u"25 percent"_qs);

    overlay.show(Mode::preview);
    EXPECT_EQ(names(), (QStringList{u"Preview · microphone off"_qs, u"01:01"_qs,
                                    u"Demo waveform; microphone is off"_qs}));
}

TEST_F(OverlayWindowTest, TheOtherModesShowTheDetailInPlaceOfTheWaveform) {
    overlay.show(Mode::preparing);
    EXPECT_EQ(names(),
              (QStringList{u"Getting ready"_qs, u"00:00"_qs, u"Preparing microphone…"_qs}));
    overlay.show(Mode::transcribing);
    overlay.update(0.9, 5, u"Recognising"_qs);
    EXPECT_EQ(names(), (QStringList{u"Transcribing"_qs, u"00:05"_qs, u"Recognising"_qs}));
}

TEST_F(OverlayWindowTest, TheCardIsDarkAndHasRoomForItsParts) {
    overlay.show(Mode::recording);
    overlay.update(0.5, 0, {});
    expectLooks({
        {u"Recording"_qs, u"12 semibold white"_qs},
        {u"00:00"_qs, u"11 medium white 0.65"_qs},
        {u"mic.fill"_qs, u"18 #ffff6e40"_qs},
        {u"[mic.fill]"_qs, u"r20 #26ff6e40"_qs},
    });
    const QList<QQuickItem *> parts = item(u"Indicator"_qs)->childItems();
    EXPECT_EQ(colorName(parts[0]->property("color").value<QColor>()), u"#f71f2124"_qs);
    EXPECT_EQ(parts[0]->size(), QSizeF(350, 88));
    for (const QQuickItem *part : {parts[0], parts[1]})
        EXPECT_EQ(part->property("radius").toDouble(), 22);
    const auto *border = parts[1]->property("border").value<QObject *>();
    EXPECT_EQ(border->property("width").toDouble(), 1);
    EXPECT_EQ(colorName(border->property("color").value<QColor>()), u"white 0.12"_qs);

    EXPECT_EQ(place(u"[mic.fill]"_qs), QRectF(20, 24, 40, 40));
    expectGaps(
        {{u"[mic.fill]"_qs, u"Recording"_qs, 16}, {u"Recording"_qs, u"IndicatorWaveform"_qs, 7}});
    EXPECT_EQ(place(u"00:00"_qs).right(), 350 - 20);
    expectSize(u"IndicatorWaveform"_qs, 235, 22);

    const QQuickItem *waveform = item(u"IndicatorWaveform"_qs);
    QList<double> heights(34, 3);
    heights.last() = 12.5;
    EXPECT_EQ(waveform->property("heights").value<QList<double>>(), heights);
    EXPECT_EQ(waveform->property("color").value<QColor>().name(), u"#ff6e40"_qs);
    EXPECT_EQ(waveform->property("duration").toInt(), 80);
    EXPECT_EQ(waveform->property("easing").value<QEasingCurve>(),
              QEasingCurve(QEasingCurve::Linear));
}

TEST_F(OverlayWindowTest, ALongDetailStaysOnOneLineBesideTheSpinner) {
    overlay.show(Mode::transcribing);
    const QString detail = QString(80, u'm');
    overlay.update(0, 0, detail);
    EXPECT_EQ(look(detail), u"10 white 0.7"_qs);
    EXPECT_TRUE(item(detail)->property("truncated").toBool());
    EXPECT_EQ(place(detail).right(), 350 - 20);
    EXPECT_EQ(look(u"mic.fill"_qs), u"none"_qs);
    ASSERT_NE(item(u"LorSpinner"_qs), nullptr);
    EXPECT_EQ(place(u"LorSpinner"_qs).center(), QPointF(40, 44));
    EXPECT_EQ(colorName(item(u"LorSpinner"_qs)->property("color").value<QColor>()), u"white"_qs);
}

} // namespace
} // namespace lorvane
