#include "Core/TranscriptDisplay.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

TEST(TranscriptDisplay, HidesAStalePreviewAtFirst) {
    const TranscriptDisplay display;
    EXPECT_EQ(display.text(u"left over"_s), QString());
    EXPECT_EQ(display.text(QString()), QString());
    EXPECT_FALSE(display.hasFinalText());
}

TEST(TranscriptDisplay, ShowsTheLivePreviewWhileDictating) {
    TranscriptDisplay display;
    display.showLivePreview();
    EXPECT_EQ(display.text(u"partial"_s), u"partial"_s);
    EXPECT_FALSE(display.hasFinalText());
}

TEST(TranscriptDisplay, ShowsTheFinalTextWhateverThePreviewSays) {
    TranscriptDisplay display;
    display.showLivePreview();
    display.finish(u"done"_s);
    EXPECT_EQ(display.text(u"other"_s), u"done"_s);
    EXPECT_TRUE(display.hasFinalText());
}

TEST(TranscriptDisplay, TakesTheFinalTextFromBlankToo) {
    TranscriptDisplay display;
    display.finish(u"done"_s);
    EXPECT_EQ(display.text(u"other"_s), u"done"_s);
}

TEST(TranscriptDisplay, IsBlankAfterAnEmptyFinalText) {
    TranscriptDisplay display;
    display.showLivePreview();
    display.finish(u""_s);
    EXPECT_FALSE(display.hasFinalText());
    EXPECT_EQ(display.text(u"preview"_s), QString());
}

TEST(TranscriptDisplay, IsBlankAfterAResetFromEveryState) {
    TranscriptDisplay live, final, blank;
    live.showLivePreview();
    final.finish(u"done"_s);
    for (TranscriptDisplay *display : {&live, &final, &blank}) {
        display->reset();
        EXPECT_EQ(display->text(u"preview"_s), QString());
        EXPECT_FALSE(display->hasFinalText());
    }
}

TEST(TranscriptDisplay, GoesLiveAgainForTheNextDictation) {
    TranscriptDisplay display;
    display.finish(u"done"_s);
    display.reset();
    display.showLivePreview();
    EXPECT_EQ(display.text(u"next"_s), u"next"_s);
}

} // namespace
} // namespace lorvane
