#include "Views/Shell/MainWindow.h"
#include "Views/Shell/TrayItem.h"

#include "ViewFixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QTimer>

#include <gtest/gtest.h>

namespace lorvane {
namespace {

using namespace std::chrono_literals;

class ShellTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        window = std::make_unique<MainWindow>(engine, *store);
    }
    void TearDown() override {
        window.reset();
        ViewFixture::TearDown();
    }

    static QWindow *frame() {
        for (QWindow *window : QGuiApplication::topLevelWindows())
            if (window->isVisible() && window->title() == u"Lorvane")
                return window;
        return nullptr;
    }

    std::unique_ptr<MainWindow> window;
};

TEST_F(ShellTest, TheWindowHasItsSizeAndCanBeClosedAndOpenedAgain) {
    window->open();
    ASSERT_NE(frame(), nullptr);
    EXPECT_EQ(frame()->size(), QSize(1120, 760));
    EXPECT_EQ(frame()->minimumSize(), QSize(950, 650));
    window->close();
    EXPECT_FALSE(window->isOpen());
    window->open();
    EXPECT_TRUE(window->isOpen());
    EXPECT_TRUE(shows(u"A little less typing."_qs));
}

TEST_F(ShellTest, OpeningAnOpenWindowKeepsIt) {
    window->open();
    const QWindow *first = frame();
    window->open();
    EXPECT_EQ(frame(), first);
}

TEST_F(ShellTest, TheProgramCanQuitWhileTheGuideIsOpen) {
    store->showSetupGuide();
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QTimer guard;
    guard.setSingleShot(true);
    guard.callOnTimeout([] { QCoreApplication::exit(1); });
    guard.start(3000);
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(ShellTest, TheGuideIsNotClosedByItsFrame) {
    store->showSetupGuide();
    ASSERT_TRUE(shows(u"LORVANE · GETTING STARTED"_qs));
    for (QWindow *open : QGuiApplication::topLevelWindows())
        if (open->modality() == Qt::WindowModal) {
            EXPECT_FALSE(open->close());
            EXPECT_TRUE(open->isVisible());
        }
    EXPECT_TRUE(store->isSetupPresented());
    EXPECT_TRUE(shows(u"LORVANE · GETTING STARTED"_qs));
}

TEST_F(ShellTest, TheSidebarHasTheNameThePagesAndTheState) {
    window->open();
    const auto sidebar = [](const QString &state, const QString &count = {}) {
        QStringList texts{u"Lorvane app icon"_qs, u"Lorvane"_qs, u"LESS TYPING. MORE YOU."_qs,
                          u"WORKSPACE"_qs,        u"Home"_qs,    u"History"_qs};
        if (!count.isEmpty())
            texts.append(count);
        return texts + QStringList{u"Dictionary"_qs,
                                   u"Snippets"_qs,
                                   u"Scratchpad"_qs,
                                   state,
                                   u"Hold ⌃ ⌥ Space"_qs,
                                   u"Settings"_qs,
                                   u"Made for your train of thought."_qs};
    };
    const auto seen = [] {
        const QStringList all = names();
        return all.first(all.indexOf(u"Made for your train of thought."_qs) + 1);
    };
    EXPECT_EQ(seen(), sidebar(u"Ready when you are"_qs));
    hold();
    EXPECT_EQ(seen(), sidebar(u"Listening to you"_qs));
    ASSERT_TRUE(activate(u"Settings"_qs));
    EXPECT_EQ(seen(), sidebar(u"Listening to you"_qs)) << "on any page";
    letGo();
    EXPECT_EQ(seen(), sidebar(u"Ready when you are"_qs));
    store->setHistory({TranscriptRecord()});
    EXPECT_EQ(seen(), sidebar(u"Ready when you are"_qs, u"1"_qs));
}

TEST_F(ShellTest, OnlyTheEntryOfThePageIsSelected) {
    window->open();
    const QStringList pages{u"Home"_qs,     u"History"_qs,    u"Dictionary"_qs,
                            u"Snippets"_qs, u"Scratchpad"_qs, u"Settings"_qs};
    for (const QString &open : pages) {
        ASSERT_TRUE(activate(open));
        for (const QString &page : pages)
            EXPECT_EQ(button(page)->state().selected, page == open) << page.toStdString();
    }
}

TEST_F(ShellTest, ViewHistoryOnHomeSelectsHistory) {
    window->open();
    ASSERT_TRUE(activate(u"View history"_qs));
    EXPECT_TRUE(shows(u"Find, copy, and revisit the words you’ve captured."_qs));
    EXPECT_TRUE(button(u"History"_qs)->state().selected);
    EXPECT_FALSE(button(u"Home"_qs)->state().selected);
}

TEST_F(ShellTest, AnErrorHidesTheStatusUntilItIsDismissed) {
    // A shortcut that is taken is a status; a library that can't be read is an error.
    QFile library(ports.libraryPath());
    ASSERT_TRUE(QDir().mkpath(QFileInfo(library).path()));
    ASSERT_TRUE(library.open(QFile::WriteOnly));
    library.write("no library");
    library.close();
    ports.hotKey.status = -9878;
    window.reset();
    makeStore();
    window = std::make_unique<MainWindow>(engine, *store);
    window->open();
    const QString error = store->errorMessage();
    const QString status = store->statusMessage();
    ASSERT_FALSE(error.isEmpty());
    ASSERT_FALSE(status.isEmpty());
    EXPECT_NE(find(error, QAccessible::AlertMessage), nullptr);
    EXPECT_FALSE(shows(status));

    ASSERT_TRUE(activate(u"Dismiss message"_qs));
    EXPECT_FALSE(shows(error));
    EXPECT_TRUE(shows(status));

    ASSERT_TRUE(activate(u"Dismiss message"_qs));
    EXPECT_FALSE(shows(status));
    EXPECT_FALSE(button(u"Dismiss message"_qs)) << "without a message there is no banner";
}

TEST_F(ShellTest, TheTrayItemIsDrawnInTheAccent) {
    const TrayItem tray(*store, *window, engine.paletteColor("accent"));
    const QImage drawn = tray.icon().pixmap(64).toImage();
    int solid = 0;
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            const QColor color = drawn.pixelColor(x, y);
            if (color.alpha() < 255)
                continue;
            ++solid;
            EXPECT_EQ(color, QColor(212, 74, 33)) << x << ", " << y;
        }
    }
    EXPECT_GT(solid, 50);
}

TEST_F(ShellTest, TheMenuOfTheTrayItemFollowsTheDictation) {
    TrayItem tray(*store, *window, engine.paletteColor("accent"));
    const auto entries = [&] {
        QStringList texts;
        for (const QAction *action : tray.menu().actions()) {
            if (action->isSeparator())
                texts.append(u"-"_qs);
            else if (action->isVisible())
                texts.append(action->text() + (action->isEnabled() ? QString() : u" (out)"_qs));
        }
        return texts;
    };
    const QString hint = u"Hold ⌃⌥Space · release to paste (out)"_qs;
    EXPECT_EQ(entries(), (QStringList{u"Open Lorvane"_qs, u"-"_qs, u"Start Dictation"_qs, hint,
                                      u"-"_qs, u"Quit Lorvane"_qs}));
    hold();
    speak(1s);
    EXPECT_EQ(entries(), (QStringList{u"Open Lorvane"_qs, u"-"_qs, u"Finish Dictation"_qs,
                                      u"Cancel Dictation"_qs, hint, u"-"_qs, u"Quit Lorvane"_qs}));
    letGo();
    ASSERT_TRUE(store->isBusy());
    EXPECT_EQ(entries(), (QStringList{u"Open Lorvane"_qs, u"-"_qs, u"Start Dictation (out)"_qs,
                                      hint, u"-"_qs, u"Quit Lorvane"_qs}));
}

TEST_F(ShellTest, TheMenuOfTheTrayItemActs) {
    TrayItem tray(*store, *window, engine.paletteColor("accent"));
    const auto trigger = [&](const QString &text) {
        for (QAction *action : tray.menu().actions())
            if (action->text() == text)
                action->trigger();
        clock().runUntilIdle();
    };
    trigger(u"Open Lorvane"_qs);
    EXPECT_TRUE(window->isOpen());
    trigger(u"Start Dictation"_qs);
    EXPECT_TRUE(store->isRecording());
    trigger(u"Cancel Dictation"_qs);
    EXPECT_FALSE(store->isRecording());
    trigger(u"Quit Lorvane"_qs);
    EXPECT_FALSE(ports.hotKey.isRegistered()) << "the store has been shut down";
}

} // namespace
} // namespace lorvane
