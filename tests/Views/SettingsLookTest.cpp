#include "LookFixture.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

class SettingsLookTest : public LookFixture {
protected:
    void SetUp() override {
        LookFixture::SetUp();
        window->open();
    }
};

TEST_F(SettingsLookTest, Scratchpad) {
    ASSERT_TRUE(activate(u"Scratchpad"_qs));
    const QString line = u"A quiet place to gather your words. Saved automatically on this Mac."_qs;
    const QString hint = u"Copy a dictation from History and paste it here to keep working."_qs;
    const QString placeholder = u"Start anywhere. A note, a draft, a passing thought…"_qs;
    expectLooks({
        {u"0 words"_qs, u"11 muted"_qs},
        {u"doc.on.doc"_qs, u"13 ink"_qs},
        {placeholder, u"15 placeholder /6"_qs},
        {u"[LorTextEditor]"_qs, u"r16 panel line"_qs},
        {u"lightbulb"_qs, u"11 muted"_qs},
        {hint, u"11 muted"_qs},
    });
    expectGaps({
        {line, u"[Copy all]"_qs, 25},
        {u"[Copy all]"_qs, u"[LorTextEditor]"_qs, 25},
        {u"[LorTextEditor]"_qs, hint, 25},
    });
    expectInset(u"LorTextEditor"_qs, u"[LorTextEditor]"_qs, 20, 20);
    EXPECT_EQ(item(placeholder)->property("leftPadding").toDouble(), 5);
    store->setScratchpad(u"some text"_qs);
    EXPECT_EQ(look(u"some text"_qs), u"15 ink /6"_qs);
    EXPECT_EQ(look(u"Clear…"_qs), u"13 red"_qs);
}

TEST_F(SettingsLookTest, Settings) {
    ASSERT_TRUE(activate(u"Settings"_qs));
    const QString first = u"Review permissions, visual instructions and hold-to-talk practice."_qs;
    expectLooks({
        {u"DICTATION"_qs, u"10 semibold muted +1.6"_qs},
        {u"[Getting started]"_qs, u"r16 card line"_qs},
        {u"Getting started"_qs, u"13 medium ink"_qs},
        {first, u"11 muted"_qs},
        {u"Smart punctuation"_qs, u"13 medium ink"_qs},
        {u"⌃  ⌥  Space"_qs, u"13 medium monospaced ink"_qs},
        {u"[⌃  ⌥  Space]"_qs, u"r8 canvas"_qs},
        {u"Enabled"_qs, u"11 green"_qs},
        {u"checkmark.circle.fill"_qs, u"11 green"_qs},
        {u"lock.shield"_qs, u"15 ink"_qs},
        {u"Personal by design"_qs, u"15 semibold ink"_qs},
        {u"Your history, dictionary, snippets, and scratchpad are stored locally in this Mac’s Application Support folder. Lorvane does not require an account."_qs,
         u"12 muted /4"_qs},
        {u"Lorvane is an independent implementation. Ventrel’s cloud transcription, AI rewriting, accounts, and cross-device sync are not included."_qs,
         u"11 muted /3"_qs},
        {u"Lorvane"_qs, u"12 semibold rounded ink"_qs, 1},
        {u"Your voice. Your workspace."_qs, u"11 muted"_qs},
    });
    expectGaps({
        {u"DICTATION"_qs, u"[Getting started]"_qs, 25},
        {u"[Getting started]"_qs, u"SHORTCUT & PERMISSIONS"_qs, 25},
        {u"Getting started"_qs, first, 5},
        {u"Personal by design"_qs,
         u"Your history, dictionary, snippets, and scratchpad are stored locally in this Mac’s Application Support folder. Lorvane does not require an account."_qs,
         16},
    });
    constexpr int wraps = 4; // Text.Wrap
    EXPECT_EQ(item(first)->property("wrapMode").toInt(), wraps);
    expectInset(u"⌃  ⌥  Space"_qs, u"[⌃  ⌥  Space]"_qs, 12, 9);
    EXPECT_EQ(place(u"LorPicker"_qs).width(), 205);
    // Five dividers between six settings, three between four grants, one above the last words.
    EXPECT_NE(item(u"LorDivider"_qs, 8), nullptr);
    EXPECT_EQ(item(u"LorDivider"_qs, 9), nullptr);
    EXPECT_EQ(place(u"LorDivider"_qs, 1).top() - place(u"LorDivider"_qs).bottom(),
              40 + item(u"SettingRow"_qs, 1)->height());
}

TEST_F(SettingsLookTest, TheFrameOfTheGuideAndItsFirstStep) {
    store->showSetupGuide();
    const QString detail =
        u"Let’s set up your microphone, Apple Speech, and pasting at your cursor."_qs;
    expectLooks({
        {u"LORVANE · GETTING STARTED"_qs, u"11 semibold muted +1"_qs},
        {u"1 of 5"_qs, u"12 muted"_qs},
        {u"Welcome"_qs, u"11 medium white"_qs},
        {u"[Welcome]"_qs, u"r9 accent"_qs},
        {u"Speech"_qs, u"11 medium muted"_qs},
        {u"[Speech]"_qs, u"r9 sidebar"_qs},
        {u"A few minutes. A lot less typing."_qs, u"27 semibold rounded ink"_qs},
        {detail, u"13 muted"_qs},
        {u"1"_qs, u"12 semibold ink"_qs},
        {u"[1]"_qs, u"r13 sidebar"_qs},
        {u"Allow your microphone"_qs, u"13 semibold ink"_qs},
        {u"Capture your voice only when you start a recording."_qs, u"12 muted"_qs},
        {u"You choose each permission in a macOS prompt or System Settings. This guide doesn’t start a recording."_qs,
         u"12 muted"_qs},
        {u"Set up later"_qs, u"13 muted"_qs},
        {u"Continue"_qs, u"13 white"_qs},
        {u"[Continue]"_qs, u"r7 accent"_qs},
        {u"Reopen this walkthrough anytime in Settings → Open setup guide."_qs, u"10 muted"_qs},
    });
    expectGaps({
        {u"[Welcome]"_qs, u"[Microphone]"_qs, 8},
        {u"A few minutes. A lot less typing."_qs, detail, 10},
        {u"[1]"_qs, u"Allow your microphone"_qs, 12},
        {u"Allow your microphone"_qs, u"Capture your voice only when you start a recording."_qs, 3},
        {u"LorDivider"_qs, u"[Continue]"_qs, 20},
        {u"[Continue]"_qs, u"Reopen this walkthrough anytime in Settings → Open setup guide."_qs,
         12},
    });
    EXPECT_EQ(place(u"AppBrandIcon"_qs), QRectF(30, 30, 24, 24));
    EXPECT_EQ(place(u"AppBrandIcon"_qs, 1).size(), QSizeF(72, 72));
    expectSize(u"[1]"_qs, 26, 26);
    EXPECT_EQ(place(u"[Welcome]"_qs).height(), place(u"Welcome"_qs).height() + 18);
    store->setSetupStepNumber(2);
    EXPECT_EQ(look(u"[Microphone]"_qs), u"r9 sidebar"_qs) << "a passed step is like one to come";
}

TEST_F(SettingsLookTest, TheStepsOfTheGuide) {
    ports.permissions.microphone = 0;
    store->showSetupGuide(1);
    const QString note = u"Example screen — labels and appearance can vary by macOS version."_qs;
    expectLooks({
        {u"System Settings · illustrated guide"_qs, u"10 muted"_qs},
        {u"[System Settings · illustrated guide]"_qs, u"r14 sidebar"_qs},
        {u"hand.raised.fill"_qs, u"22 muted"_qs},
        {u"Privacy & Security"_qs, u"11 semibold muted"_qs},
        {u"mic.fill"_qs, u"15 ink"_qs},
        {u"Microphone"_qs, u"15 semibold ink"_qs, 1},
        {u"[Lorvane]"_qs, u"r9 white"_qs},
        {u"Lorvane"_qs, u"13 medium ink"_qs},
        {u"ON"_qs, u"9 bold white"_qs},
        {u"Turn on the switch beside Lorvane."_qs, u"11 muted"_qs},
        {note, u"9 muted"_qs},
        {u"If you previously chose Don’t Allow, open System Settings → Privacy & Security → Microphone and turn on Lorvane. If it’s missing, request access here first."_qs,
         u"12 ink"_qs},
        {u"Waiting for your permission"_qs, u"12 medium ink"_qs},
        {u"circle"_qs, u"12 muted"_qs},
        {u"Allow microphone"_qs, u"12 white"_qs},
        {u"[Allow microphone]"_qs, u"r7 accent"_qs},
        {u"Open Microphone settings"_qs, u"12 ink"_qs},
    });
    EXPECT_EQ(colorName(item(u"[ON]"_qs)->property("color").value<QColor>()), u"blue"_qs);
    expectInset(u"ON"_qs, u"[ON]"_qs, 10, 5);
    expectInset(note, u"[System Settings · illustrated guide]"_qs, 18,
                place(note).top() - place(u"[System Settings · illustrated guide]"_qs).top());
    expectGaps({
        {u"[Lorvane]"_qs, u"Turn on the switch beside Lorvane."_qs, 12},
        {u"[Allow microphone]"_qs, u"[Open Microphone settings]"_qs, 12},
        {u"LorDivider"_qs, u"[Check again]"_qs, 12},
        {u"[Check again]"_qs, u"[Allow microphone]"_qs, 12},
    });
    EXPECT_EQ(place(u"Privacy & Security"_qs).width(), 118);
    const QList<QQuickItem *> circles = item(u"PermissionPanelIllustration"_qs)
                                            ->childItems()
                                            .first()
                                            ->childItems()
                                            .first()
                                            ->childItems();
    const QStringList colours{u"red 0.7"_qs, u"orange 0.7"_qs, u"green 0.7"_qs};
    for (qsizetype i = 0; i < colours.size(); ++i) {
        EXPECT_EQ(frameLook(*circles[i]), u"r4 "_qs + colours[i]);
        EXPECT_EQ(circles[i]->position(), QPointF(13.0 * static_cast<double>(i), circles[i]->y()));
    }
    const QQuickItem *scroller = item(u"GrantStep"_qs)->parentItem()->parentItem()->parentItem();
    EXPECT_EQ(place(u"LorDivider"_qs).top() -
                  scroller->mapRectToScene(QRectF({}, scroller->size())).bottom(),
              16);
    EXPECT_EQ(place(u"LorDivider"_qs, 1).top() - place(u"[Allow microphone]"_qs).bottom(), 16);
    QQuickWindow *guide = item(u"OnboardingView"_qs)->window();
    guide->setMinimumSize({});
    guide->resize(420, 760);
    expectGaps({{u"[Allow microphone]"_qs, u"[Open Microphone settings]"_qs, 10},
                {u"[Open Microphone settings]"_qs, u"[Show this app in Finder]"_qs, 10}});

    store->setSetupStepNumber(4);
    expectLooks({
        {u"Pasting"_qs, u"11 ink"_qs, 1},
        {u"circle"_qs, u"11 muted"_qs},
        {u"checkmark.circle.fill"_qs, u"11 green"_qs},
        {u"[LorTextEditor]"_qs, u"r10 white line"_qs},
    });
    EXPECT_EQ(place(u"LorTextEditor"_qs).height(), 80);
    expectInset(u"LorTextEditor"_qs, u"[LorTextEditor]"_qs, 8, 8);
}

} // namespace
} // namespace lorvane
