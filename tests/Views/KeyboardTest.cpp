#include "Views/Setup/PermissionPrompt.h"

#include "PageFixture.h"

#include <QClipboard>
#include <QImage>
#include <QTimer>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

/// Everything that can be done with the mouse, done with the keyboard alone.
class KeyboardTest : public PageFixture {
protected:
    void SetUp() override {
        PageFixture::SetUp();
        store->setHistory({record(u"a saved dictation"_qs)});
        store->setVocabulary({{u"kube ctl"_qs, u"kubectl"_qs}, {u"shiv on"_qs, u"Siobhan"_qs}});
        store->setSnippets({{.trigger = u"sign off"_qs, .content = u"Kind regards"_qs}});
        store->setScratchpad(u"a note"_qs);
    }

    static QQuickItem *focusItem() {
        const QQuickWindow *frame = focusWindow();
        return frame ? frame->activeFocusItem() : nullptr;
    }

    /// Whether the picture of the window tells which item has the focus.
    static bool isFocusVisible() {
        QQuickItem *item = focusItem();
        QQuickWindow *frame = item->window();
        const QRectF area = item->mapRectToScene(item->boundingRect());
        if (!QRectF({}, frame->size()).intersects(area))
            return false;
        const QImage with = frame->grabWindow();
        item->setFocus(false);
        const QImage without = frame->grabWindow();
        item->forceActiveFocus(Qt::TabFocusReason);
        return with != without;
    }

    /// What the Tab key reaches in the window in front, once round.
    static QStringList tabStops() {
        QStringList stops;
        type(Qt::Key_Tab);
        const QQuickItem *first = focusItem();
        do {
            stops.append(focusName());
            EXPECT_TRUE(isFocusVisible()) << stops.back().toStdString();
            type(Qt::Key_Tab);
        } while (focusItem() != first && stops.size() < 100);
        return stops;
    }

    /// What can be used or read there, in the order of the screen reader.
    static QStringList controls() {
        QStringList found;
        visit([&](QAccessibleInterface *seen) {
            const auto *item = qobject_cast<QQuickItem *>(seen->object());
            if (!item || item->window() != focusWindow() || !item->isEnabled())
                return;
            const QAccessible::Role role = seen->role();
            if (role == QAccessible::Button || role == QAccessible::CheckBox ||
                role == QAccessible::ComboBox || role == QAccessible::EditableText ||
                item->inherits("QQuickTextEdit"))
                found.append(seen->text(QAccessible::Name));
        });
        return found;
    }

    static void expectAllReached() {
        QStringList stops = tabStops();
        const QStringList all = controls();
        ASSERT_TRUE(all.contains(stops.first()));
        while (stops.first() != all.first())
            stops.append(stops.takeFirst());
        EXPECT_EQ(stops, all);
    }
};

TEST_F(KeyboardTest, TabReachesAllOfEveryPageInItsOrderAndShowsWhereItIs) {
    ports.permissions.accessibility = false;
    store->copyTranscript(u"something to tell"_qs);
    for (const QString &name : {u"Home"_qs, u"History"_qs, u"Dictionary"_qs, u"Snippets"_qs,
                                u"Scratchpad"_qs, u"Settings"_qs}) {
        SCOPED_TRACE(name.toStdString());
        openPage(name);
        expectAllReached();
    }
}

TEST_F(KeyboardTest, TabReachesAllOfHomeDuringAndAfterADictation) {
    window->open();
    hold();
    speak(1s);
    expectAllReached();
    letGo();
    answer(u"hello there"_qs);
    clock().advance(1s);
    ASSERT_TRUE(store->hasCompletedTranscript());
    expectAllReached();
}

TEST_F(KeyboardTest, TabReachesAllOfEverySheet) {
    const QList<std::pair<QString, QString>> sheets{
        {u"Dictionary"_qs, u"Add name or phrase"_qs},
        {u"Dictionary"_qs, u"Edit kubectl"_qs},
        {u"Snippets"_qs, u"New snippet"_qs},
        {u"Snippets"_qs, u"Edit sign off"_qs},
        {u"Scratchpad"_qs, u"Clear…"_qs},
    };
    for (const auto &[name, button] : sheets) {
        SCOPED_TRACE(button.toStdString());
        openPage(name);
        ASSERT_TRUE(activate(button));
        ASSERT_TRUE(focusItem() && isFocusVisible()) << "from the start";
        expectAllReached();
        type(Qt::Key_Escape);
        EXPECT_TRUE(sheet().isEmpty());
    }
}

TEST_F(KeyboardTest, TabReachesAllOfTheGuide) {
    ports.permissions.microphone = 0;
    ports.permissions.speech = 0;
    ports.permissions.accessibility = false;
    store->showSetupGuide();
    for (int step = 0; step < 5; ++step) {
        SCOPED_TRACE(step);
        store->setSetupStepNumber(step);
        ASSERT_TRUE(focusItem() && isFocusVisible()) << "from the start";
        expectAllReached();
    }
    type(Qt::Key_Escape);
    EXPECT_TRUE(store->isSetupPresented()) << "only its own buttons end it";
}

TEST_F(KeyboardTest, TheGuideKeepsTheFocusWhenItsButtonGoesOutOfUse) {
    ports.permissions.microphone = 0;
    store->showSetupGuide(1);
    find(u"Allow microphone"_qs)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Space);
    clock().runUntilIdle();
    EXPECT_FALSE(isEnabled(u"Already allowed"_qs));
    EXPECT_EQ(focusName(), u"Continue"_qs);
}

TEST_F(KeyboardTest, AfterAMessageTheFocusIsBackOnThePage) {
    openPage(u"Scratchpad"_qs);
    typeInto(u"Scratchpad text"_qs, u"a note"_qs);
    store->copyTranscript(u"something to tell"_qs);
    find(u"Dismiss message"_qs)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Return);
    EXPECT_EQ(focusName(), u"Scratchpad text"_qs);
}

TEST_F(KeyboardTest, RemovingAVariantLeavesTheFocusOnTheNextLine) {
    store->setVocabulary({{u"one"_qs, u"Name"_qs, {u"two"_qs, u"three"_qs}}});
    openPage(u"Dictionary"_qs);
    ASSERT_TRUE(activate(u"Edit Name"_qs));
    const auto remove = [](int row) {
        find(u"Remove variant"_qs, QAccessible::Button, row)
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::setFocusAction());
        type(Qt::Key_Space);
        return focusName() == u"Recognized variant"_qs ? focusItem()->property("text").toString()
                                                       : focusName();
    };
    EXPECT_EQ(remove(1), u"three"_qs);
    EXPECT_EQ(remove(1), u"one"_qs) << "there is none below the last";
}

TEST_F(KeyboardTest, TheGuideIsScrolledFromItsButtons) {
    store->showSetupGuide(3);
    const auto top = [] {
        const auto *heading =
            qobject_cast<QQuickItem *>(find(u"Put the words at your cursor."_qs)->object());
        return heading->mapToScene({}).y();
    };
    EXPECT_EQ(focusName(), u"Continue"_qs);
    const double before = top();
    type(Qt::Key_End);
    EXPECT_LT(top(), before);
    type(Qt::Key_PageUp);
    EXPECT_EQ(top(), before);
}

TEST_F(KeyboardTest, TheGuideIsWalkedByReturn) {
    store->showSetupGuide();
    EXPECT_EQ(focusName(), u"Continue"_qs);
    for (int step = 1; step < 5; ++step) {
        type(Qt::Key_Return);
        EXPECT_EQ(store->setupStepNumber(), step);
    }
    EXPECT_EQ(focusName(), u"Start using Lorvane"_qs);
    type(Qt::Key_Return);
    EXPECT_FALSE(store->isSetupPresented());
}

TEST_F(KeyboardTest, TheFocusIsStillSeenAfterAnotherWindowHadIt) {
    openPage(u"Settings"_qs);
    find(u"Refresh"_qs)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(isFocusVisible());
    QQuickWindow *frame = focusWindow();
    QWindow other;
    other.show();
    other.requestActivate();
    QCoreApplication::processEvents();
    frame->requestActivate();
    EXPECT_EQ(focusName(), u"Refresh"_qs);
    EXPECT_TRUE(isFocusVisible());
}

TEST_F(KeyboardTest, TheHistorysOptionsAreChosenFromTheirMenu) {
    openPage(u"History"_qs);
    find(u"History options"_qs)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    type(Qt::Key_Return);
    EXPECT_TRUE(shows(u"Delete all history…"_qs));
    type(Qt::Key_Escape);
    EXPECT_FALSE(shows(u"Delete all history…"_qs));
    EXPECT_EQ(focusName(), u"History options"_qs);

    QQuickWindow *page = focusWindow();
    type(Qt::Key_Space);
    type(Qt::Key_Down);
    type(Qt::Key_Return);
    EXPECT_TRUE(shows(u"Delete all dictation history?"_qs));
    EXPECT_EQ(focusName(), u"Cancel"_qs);
    type(Qt::Key_Return);
    EXPECT_EQ(store->historyCount(), 1);
    page->requestActivate();
    EXPECT_EQ(focusName(), u"History options"_qs);
}

TEST_F(KeyboardTest, ASavedTextIsSelectedAndCopied) {
    openPage(u"History"_qs);
    typeInto(u"Search your dictations"_qs, {});
    for (int i = 0; i < 10 && focusName() != u"a saved dictation"_qs; ++i)
        type(Qt::Key_Tab);
    ASSERT_EQ(focusName(), u"a saved dictation"_qs);
    QGuiApplication::clipboard()->clear();
    type(Qt::Key_A, {}, Qt::ControlModifier);
    type(Qt::Key_C, {}, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"a saved dictation"_qs);
    type(Qt::Key_Home);
    type(Qt::Key_Right, {}, Qt::ControlModifier | Qt::ShiftModifier);
    type(Qt::Key_C, {}, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"a "_qs);
    type(Qt::Key_X, u"x"_qs);
    EXPECT_TRUE(shows(u"a saved dictation"_qs)) << "it can't be written into";
}

TEST_F(KeyboardTest, AScreenReaderDoesNotWaitForTheExportsDialog) {
    openPage(u"History"_qs);
    bool isAsked = false;
    ports.savePanel.whileOpen = [&] { isAsked = true; };
    find(u"Export"_qs)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_FALSE(isAsked);
    QCoreApplication::processEvents();
    EXPECT_TRUE(isAsked);
}

Async<> ask(PermissionPrompt &prompt, std::optional<bool> &answer) {
    const bool isAllowed = co_await prompt.ask(u"May it?"_qs);
    answer = isAllowed;
}

TEST_F(KeyboardTest, TheQuestionForAGrantIsAnsweredByKeys) {
    PermissionPrompt prompt{engine, ports.clock};
    const QList<std::pair<Qt::Key, bool>> rows{{Qt::Key_Return, true}, {Qt::Key_Escape, false}};
    for (const auto &[key, expected] : rows) {
        std::optional<bool> answer;
        const Task<> task = Task<>::run(ask(prompt, answer));
        EXPECT_EQ(focusName(), u"Allow"_qs);
        ASSERT_TRUE(focusItem() && isFocusVisible());
        expectAllReached();
        while (focusName() != u"Allow"_qs)
            type(Qt::Key_Tab);
        type(key);
        clock().runUntilIdle();
        EXPECT_EQ(answer, expected);
    }
}

} // namespace
} // namespace lorvane
