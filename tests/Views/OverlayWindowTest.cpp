#include "Views/Overlay/OverlayWindow.h"

#include "ViewFixture.h"

#include <QQuickView>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;

class OverlayWindowTest : public ViewFixture {
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

} // namespace
} // namespace lorvane
