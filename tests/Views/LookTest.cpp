#include "LookFixture.h"

#include <QEasingCurve>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

class LookTest : public LookFixture {
protected:
    void SetUp() override {
        LookFixture::SetUp();
        window->open();
    }
};

TEST_F(LookTest, ThePaletteHasTheColoursOfTheDesign) {
    const auto opaque = [](float red, float green, float blue) {
        return QColor::fromRgbF(red, green, blue);
    };
    const QList<std::pair<const char *, QColor>> rows{
        {"canvas", opaque(0.97F, 0.96F, 0.94F)},
        {"sidebar", opaque(0.94F, 0.93F, 0.90F)},
        {"ink", opaque(0.15F, 0.18F, 0.17F)},
        {"muted", opaque(0.44F, 0.46F, 0.43F)},
        {"accent", opaque(0.83F, 0.29F, 0.13F)},
        {"line", QColor::fromRgbF(0, 0, 0, 0.08F)},
        {"white", opaque(1, 1, 1)},
    };
    for (const auto &[name, color] : rows)
        EXPECT_EQ(palette()->property(name).value<QColor>().name(QColor::HexArgb),
                  color.name(QColor::HexArgb))
            << name;

    // White over the canvas and over the sidebar, blended beforehand.
    const auto over = [&](const char *ground, double opacity) {
        const auto color = palette()->property(ground).value<QColor>();
        const auto blend = [&](float part) {
            return static_cast<float>(opacity + (1 - opacity) * static_cast<double>(part));
        };
        return opaque(blend(color.redF()), blend(color.greenF()), blend(color.blueF()));
    };
    const QList<std::tuple<const char *, const char *, double>> whites{
        {"card", "canvas", 0.88},
        {"panel", "canvas", 0.9},
        {"selectedPage", "sidebar", 0.9},
        {"status", "sidebar", 0.5},
    };
    for (const auto &[name, ground, opacity] : whites)
        EXPECT_EQ(palette()->property(name).value<QColor>().name(), over(ground, opacity).name())
            << name;
    EXPECT_EQ(colorName(palette()->property("pressedAccent").value<QColor>()), u"pressedAccent"_qs);
    EXPECT_NEAR(palette()->property("pressedAccent").value<QColor>().alphaF(), 0.75, 0.01);
    EXPECT_NEAR(palette()->property("placeholder").value<QColor>().alphaF(), 0.7, 0.01);
}

TEST_F(LookTest, TheSidebar) {
    store->setHistory({record(u"one"_qs)});
    expectLooks({
        {u"Lorvane"_qs, u"18 bold rounded ink"_qs},
        {u"LESS TYPING. MORE YOU."_qs, u"8 semibold muted +1.2"_qs},
        {u"WORKSPACE"_qs, u"9 semibold muted +1.6"_qs},
        {u"Home"_qs, u"13 semibold ink"_qs},
        {u"[Home]"_qs, u"r9 selectedPage"_qs},
        {u"History"_qs, u"13 medium muted"_qs},
        {u"[History]"_qs, u"r9 clear"_qs},
        {u"1"_qs, u"10 medium muted"_qs},
        {u"square.grid.2x2"_qs, u"15 ink"_qs},
        {u"clock.arrow.circlepath"_qs, u"15 muted"_qs},
        {u"character.book.closed"_qs, u"15 muted"_qs},
        {u"text.bubble"_qs, u"15 muted"_qs},
        {u"square.and.pencil"_qs, u"15 muted"_qs},
        {u"slider.horizontal.3"_qs, u"15 muted"_qs},
        {u"Ready when you are"_qs, u"11 medium ink"_qs},
        {u"[Ready when you are]"_qs, u"r12 status"_qs},
        {u"Hold ⌃ ⌥ Space"_qs, u"12 medium muted"_qs},
        {u"Made for your train of thought."_qs, u"10 muted"_qs},
        {u"{WORKSPACE}"_qs, u"r0 sidebar"_qs},
    });
    expectGaps({
        {u"AppBrandIcon"_qs, u"Lorvane"_qs, 10},
        {u"Lorvane"_qs, u"LESS TYPING. MORE YOU."_qs, 1},
        {u"AppBrandIcon"_qs, u"WORKSPACE"_qs, 38},
        {u"WORKSPACE"_qs, u"[Home]"_qs, 12},
        {u"[Home]"_qs, u"[History]"_qs, 4},
        {u"Ready when you are"_qs, u"Hold ⌃ ⌥ Space"_qs, 9},
        {u"[Ready when you are]"_qs, u"[Settings]"_qs, 16},
        {u"[Settings]"_qs, u"Made for your train of thought."_qs, 4 + 18},
        {u"square.grid.2x2"_qs, u"Home"_qs, 12 + 1},
        {u"{WORKSPACE}"_qs, u"LorHomeView"_qs, 1},
    });
    expectSize(u"AppBrandIcon"_qs, 40, 40);
    EXPECT_EQ(place(u"{WORKSPACE}"_qs).width(), 216);
    expectInset(u"AppBrandIcon"_qs, u"{WORKSPACE}"_qs, 16, 28);
    EXPECT_EQ(place(u"WORKSPACE"_qs).left(), 16 + 12);
    expectInset(u"Hold ⌃ ⌥ Space"_qs, u"[Ready when you are]"_qs, 14,
                14 + place(u"Ready when you are"_qs).height() + 9);
    EXPECT_EQ(place(u"[Home]"_qs).height(), place(u"Home"_qs).height() + 22);
    EXPECT_EQ(760 - place(u"Made for your train of thought."_qs).bottom(), 22);

    const auto dot = [this] {
        return item(u"StatusPanel"_qs)
            ->childItems()
            .first()
            ->childItems()
            .first()
            ->childItems()
            .first();
    };
    EXPECT_EQ(dot()->size(), QSizeF(6, 6));
    EXPECT_EQ(colorName(dot()->property("color").value<QColor>()), u"green 0.7"_qs);
    hold();
    EXPECT_EQ(colorName(dot()->property("color").value<QColor>()), u"accent"_qs);
}

TEST_F(LookTest, TheMessages) {
    store->copyTranscript(u"text"_qs);
    const QString notice = store->statusMessage();
    expectLooks({
        {notice, u"12 ink"_qs},
        {u"{%1}"_qs.arg(notice), u"r0 green 0.06"_qs},
        {u"checkmark.circle"_qs, u"13 ink"_qs},
        {u"xmark"_qs, u"13 ink"_qs},
    });
    expectGaps({{u"checkmark.circle"_qs, notice, 10}});
    EXPECT_EQ(place(u"checkmark.circle"_qs).left() - place(u"{%1}"_qs.arg(notice)).left(), 14);

    store->addVocabulary(u"twice"_qs, u"twice"_qs);
    store->addVocabulary(u"twice"_qs, u"twice"_qs);
    const QString error = store->errorMessage();
    expectLooks({
        {error, u"12 red"_qs},
        {u"{%1}"_qs.arg(error), u"r0 red 0.06"_qs},
        {u"exclamationmark.circle"_qs, u"13 red"_qs},
        {u"xmark"_qs, u"13 red"_qs},
    });
}

TEST_F(LookTest, HomeAtRest) {
    const QString subtitle = u"Speak naturally. Make room for your next good idea."_qs;
    expectLooks({
        {u"YOUR VOICE, IN WRITING"_qs, u"10 semibold accent +2"_qs},
        {u"A little less typing."_qs, u"32 semibold rounded ink -0.8"_qs},
        {subtitle, u"13 muted"_qs},
        {u"[Let your words flow.]"_qs, u"r16 card line"_qs},
        {u"Let your words flow."_qs, u"23 semibold rounded ink"_qs},
        {u"Hold a shortcut. Speak. Release to paste."_qs, u"12 muted"_qs},
        {u"DICTATION"_qs, u"9 semibold muted +1"_qs},
        {u"mic.fill"_qs, u"26 white"_qs},
        {u"[mic.fill]"_qs, u"r24 accent"_qs},
        {u"Click to start, or hold"_qs, u"12 muted"_qs},
        {u"⌃  ⌥  Space"_qs, u"15 medium monospaced ink"_qs},
        {u"0"_qs, u"26 medium rounded ink"_qs},
        {u"[WORDS CAPTURED]"_qs, u"r16 card line"_qs},
        {u"WORDS CAPTURED"_qs, u"8 semibold muted +1.2"_qs},
        {u"text.alignleft"_qs, u"14 muted"_qs},
        {u"tray"_qs, u"14 muted"_qs},
        {u"waveform"_qs, u"14 muted"_qs},
        {u"Your latest thoughts"_qs, u"17 semibold ink"_qs},
        {u"View history"_qs, u"12 medium accent"_qs},
        {u"text.bubble"_qs, u"27 accent"_qs, 1},
        {u"[text.bubble]"_qs, u"r18 accent 0.07"_qs, 1},
        {u"It starts with a thought."_qs, u"17 semibold ink"_qs},
        {u"lock.shield"_qs, u"10 muted"_qs},
        {u"Saved on this Mac · Speech recognition provided by Apple"_qs, u"10 muted"_qs},
    });
    expectGaps({
        {u"YOUR VOICE, IN WRITING"_qs, u"A little less typing."_qs, 9},
        {u"A little less typing."_qs, subtitle, 9},
        {subtitle, u"[Let your words flow.]"_qs, 26},
        {u"Let your words flow."_qs, u"Hold a shortcut. Speak. Release to paste."_qs, 6},
        {u"Hold a shortcut. Speak. Release to paste."_qs, u"[mic.fill]"_qs, 24},
        {u"[mic.fill]"_qs, u"Click to start, or hold"_qs, 24},
        {u"Click to start, or hold"_qs, u"⌃  ⌥  Space"_qs, 10},
        {u"[Let your words flow.]"_qs, u"[WORDS CAPTURED]"_qs, 26},
        {u"[WORDS CAPTURED]"_qs, u"[THOUGHTS SAVED]"_qs, 14},
        {u"[THOUGHTS SAVED]"_qs, u"[TIME DICTATING]"_qs, 14},
        {u"text.alignleft"_qs, u"0"_qs, 14},
        {u"0"_qs, u"WORDS CAPTURED"_qs, 14},
        {u"Your latest thoughts"_qs, u"[It starts with a thought.]"_qs, 26},
        {u"lock.shield"_qs, u"Saved on this Mac · Speech recognition provided by Apple"_qs, 7},
    });
    expectInset(u"YOUR VOICE, IN WRITING"_qs, u"LorHomeView"_qs, 36, 36);
    expectInset(u"Let your words flow."_qs, u"[Let your words flow.]"_qs, 24, 24);
    expectInset(u"DICTATION"_qs, u"[DICTATION]"_qs, 10, 6);
    expectInset(u"text.alignleft"_qs, u"[WORDS CAPTURED]"_qs, 24, 24);
    expectSize(u"[mic.fill]"_qs, 76, 76);
    EXPECT_EQ(place(u"[text.bubble]"_qs, 1).size(), QSizeF(62, 62));
    EXPECT_EQ(place(u"[text.bubble]"_qs, 1).top() - place(u"[It starts with a thought.]"_qs).top(),
              24 + 45);
    EXPECT_EQ(place(u"[WORDS CAPTURED]"_qs).width(), place(u"[TIME DICTATING]"_qs).width());
    const QQuickItem *badge = item(u"[DICTATION]"_qs);
    EXPECT_EQ(badge->property("radius").toDouble(), badge->height() / 2);
    const QQuickItem *shadow = item(u"LorShadow"_qs);
    EXPECT_EQ(colorName(shadow->property("color").value<QColor>()), u"accent 0.18"_qs);
    EXPECT_EQ(shadow->property("blur").toDouble(), 12);
    EXPECT_EQ(shadow->position(), QPointF(0, 5));
}

TEST_F(LookTest, AWideWindowHasItsPageInTheMiddle) {
    const auto expectMiddle = [this](const QString &page, const QString &eyebrow) {
        const QRectF area = place(page);
        EXPECT_EQ(area.width(), 1600 - 216 - 1);
        EXPECT_NEAR(place(eyebrow).left() - area.left(), (area.width() - 1050) / 2 + 36, 1);
        EXPECT_NEAR(place(eyebrow).width(), 1050 - 72, 1);
    };
    focusWindow()->resize(1600, 760);
    expectMiddle(u"LorHomeView"_qs, u"YOUR VOICE, IN WRITING"_qs);
    ASSERT_TRUE(activate(u"History"_qs));
    expectMiddle(u"LorHistoryView"_qs, u"A PLACE FOR EVERY THOUGHT"_qs);
    ASSERT_TRUE(activate(u"Settings"_qs));
    expectMiddle(u"LorSettingsView"_qs, u"MAKE YOURSELF AT HOME"_qs);
    ASSERT_TRUE(activate(u"Scratchpad"_qs));
    EXPECT_EQ(place(u"[LorTextEditor]"_qs).width(), 1600 - 216 - 1 - 72) << "it grows";
}

TEST_F(LookTest, HomeDuringADictationAndAfterIt) {
    hold();
    speak(1s);
    ports.speech.liveRequests().back()->give(FakeSpeech::result(u"live words"_qs, false));
    clock().runUntilIdle();
    expectLooks({
        {u"Go on. We’re listening."_qs, u"23 semibold rounded ink"_qs},
        {u"● LIVE"_qs, u"9 semibold accent +1"_qs},
        {u"stop.fill"_qs, u"26 white"_qs},
        {u"Listening…"_qs, u"12 muted"_qs},
        {u"Cancel"_qs, u"12 muted"_qs},
        {u"live words"_qs, u"15 ink /5"_qs},
        {u"[live words]"_qs, u"r10 canvas"_qs},
    });
    expectGaps({
        {u"LorWaveform"_qs, u"Listening…"_qs, 10},
        {u"[stop.fill]"_qs, u"[live words]"_qs, 24},
    });
    expectInset(u"live words"_qs, u"[live words]"_qs, 16, 16);
    const QQuickItem *meter = item(u"LorWaveform"_qs);
    EXPECT_EQ(meter->size(), QSizeF(24 * 4 + 23 * 4, 35));
    EXPECT_EQ(meter->property("duration").toInt(), 120);
    EXPECT_EQ(meter->property("easing").value<QEasingCurve>(), QEasingCurve(QEasingCurve::OutQuad));
    EXPECT_EQ(meter->property("opacities").value<QList<double>>().size(), 24);
    EXPECT_EQ(colorName(meter->property("color").value<QColor>()), u"accent"_qs);

    letGo();
    EXPECT_EQ(look(u"Preparing your words…"_qs), u"13 ink"_qs);
    expectGaps({{u"LorSpinner"_qs, u"Preparing your words…"_qs, 10}});
    answer(u"final words"_qs);
    clock().advance(1s);
    expectLooks({
        {store->displayedTranscript(), u"15 ink /5"_qs},
        {u"Copy text"_qs, u"11 medium accent"_qs},
        {u"doc.on.doc"_qs, u"11 accent"_qs},
        {u"View history"_qs, u"11 medium accent"_qs},
    });
    expectGaps({{store->displayedTranscript(), u"Copy text"_qs, 12}});
}

TEST_F(LookTest, TheLatestThought) {
    store->setHistory({record(u"one\ntwo\nthree\nfour\nfive"_qs)});
    const QString text = store->history().first().text;
    expectLooks({
        {date(), u"11 muted"_qs},
        {u"5 words"_qs, u"11 muted"_qs},
        {text, u"14 ink /5"_qs},
        {u"Copy text"_qs, u"11 medium accent"_qs},
    });
    expectGaps({{date(), text, 15}});
    const QQuickItem *shown = item(u"LorSelectableText"_qs);
    EXPECT_TRUE(shown->property("truncated").toBool());
    const double line = shown->property("lineHeight").toDouble();
    EXPECT_NEAR(shown->height(), 4 * line - 5, 0.6) << "four lines";
    expectGaps({{u"LorSelectableText"_qs, u"Copy text"_qs, 15}});
}

} // namespace
} // namespace lorvane
