#include "StoreFixture.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Mode = RecordingOverlay::Mode;

using IndicatorTest = DictationTest;

// The indicator's preview

TEST_F(IndicatorTest, PreviewRunsForSixtyFiveStepsAndHides) {
    store->previewRecordingIndicator();
    clock().runUntilIdle();
    EXPECT_EQ(meter().mode(), Mode::preview);
    EXPECT_EQ(meter().detail(), u"Preview only · microphone off"_s);
    EXPECT_DOUBLE_EQ(meter().samples().last(), 0.25);
    clock().advance(80ms * 64);
    EXPECT_TRUE(ports.overlayPanel.visible);
    EXPECT_DOUBLE_EQ(meter().duration(), 64 * 0.08);
    clock().advance(80ms);
    EXPECT_FALSE(ports.overlayPanel.visible);
}

TEST_F(IndicatorTest, DictationTakesTheIndicatorOverFromAPreview) {
    store->previewRecordingIndicator();
    clock().advance(1s);
    hold();
    store->previewRecordingIndicator();
    EXPECT_EQ(meter().mode(), Mode::recording);
    clock().advance(10s);
    EXPECT_TRUE(ports.overlayPanel.visible);
    EXPECT_EQ(meter().mode(), Mode::recording);
    EXPECT_EQ(meter().detail(), u"Recording"_s);
}

TEST_F(IndicatorTest, PreviewIsBarredWhileBusy) {
    press();
    store->previewRecordingIndicator();
    EXPECT_EQ(meter().mode(), Mode::preparing);
    clock().runUntilIdle();
    speak(1s);
    letGo();
    store->previewRecordingIndicator();
    clock().runUntilIdle();
    EXPECT_EQ(meter().mode(), Mode::transcribing);
}

TEST_F(IndicatorTest, SecondPreviewStartsAfresh) {
    store->previewRecordingIndicator();
    clock().advance(4s);
    store->previewRecordingIndicator();
    clock().advance(80ms * 64);
    EXPECT_TRUE(ports.overlayPanel.visible) << "the first preview has hidden the second";
    EXPECT_DOUBLE_EQ(meter().duration(), 64 * 0.08);
    clock().advance(80ms);
    EXPECT_FALSE(ports.overlayPanel.visible);
}

TEST_F(IndicatorTest, EachBufferOfTheMicrophoneFeedsIt) {
    hold();
    ports.audioInput.deliver(4800, 0.1F);
    clock().runUntilIdle();
    EXPECT_DOUBLE_EQ(meter().duration(), 0.1);
    EXPECT_NEAR(meter().samples().last(), 40.0 / 60, 0.01);
    EXPECT_EQ(meter().detail(), u"Recording"_s);
    EXPECT_DOUBLE_EQ(store->audioLevel(), meter().samples().last());
}

} // namespace
} // namespace lorvane
