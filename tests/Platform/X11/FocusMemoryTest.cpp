#include "Platform/Linux/FocusMemory.h"

#include "Awaiting.h"
#include "Platform/Linux/AtSpiAccessibility.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gmock/gmock.h>

namespace lorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const auto text = QStringLiteral("/text");
const auto field = QStringLiteral("/field");
const auto pane = QStringLiteral("/pane");
const auto window = QStringLiteral("/window");

TEST(FocusMemory, TheLastToGainTheFocusComesFirst) {
    FocusMemory memory;
    memory.gained(text);
    memory.lost(text);
    memory.gained(field);
    EXPECT_THAT(memory.candidates(), ElementsAre(field));
}

TEST(FocusMemory, ALossAloneForgetsNothing) {
    FocusMemory memory;
    memory.gained(text);
    memory.lost(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(text));
    memory.gained(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(text));
}

TEST(FocusMemory, WhatHasNotLostTheFocusStaysBesideWhatGainsIt) {
    FocusMemory memory;
    memory.gained(text);
    memory.gained(pane);
    EXPECT_THAT(memory.candidates(), ElementsAre(pane, text));
    memory.lost(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(pane, text));
    memory.gained(field);
    EXPECT_THAT(memory.candidates(), ElementsAre(field, pane));
}

TEST(FocusMemory, KeepsFourAtMost) {
    FocusMemory memory;
    for (int i = 0; i < 10; ++i)
        memory.gained(QString::number(i));
    EXPECT_THAT(memory.candidates(), ElementsAre(QStringLiteral("9"), QStringLiteral("8"),
                                                 QStringLiteral("7"), QStringLiteral("6")));
}

TEST(FocusMemory, TheOldEventCountsOnlyWhereThereIsNoOther) {
    FocusMemory memory;
    memory.gainedInOldWay(pane);
    EXPECT_THAT(memory.candidates(), ElementsAre(pane));
    memory.lost(pane);
    memory.gained(text);
    memory.gainedInOldWay(pane);
    EXPECT_THAT(memory.candidates(), ElementsAre(text));
}

TEST(FocusMemory, ASearchCountsOnlyUntilTheApplicationTells) {
    FocusMemory memory;
    memory.found(pane);
    memory.found(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(pane, text));
    memory.lost(pane);
    memory.lost(text);
    memory.gained(field);
    memory.found(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(field));
}

TEST(FocusMemory, ForgetsAnElement) {
    FocusMemory memory;
    memory.gained(text);
    memory.forget(text);
    EXPECT_THAT(memory.candidates(), IsEmpty());
}

TEST(FocusMemory, IsActiveWhileOneOfItsWindowsIs) {
    FocusMemory memory;
    EXPECT_FALSE(memory.isActive());
    memory.windowActivated(window);
    memory.windowActivated(QStringLiteral("/other"));
    memory.windowDeactivated(window);
    EXPECT_TRUE(memory.isActive());
    memory.windowDeactivated(QStringLiteral("/other"));
    EXPECT_FALSE(memory.isActive());
}

TEST(AccessibilityWithoutABus, HasNoElementsAndDoesNotWait) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    int argc = 0;
    QCoreApplication application(argc, nullptr);
    QElapsedTimer timer;
    timer.start();
    AtSpiAccessibility accessibility;
    QCoreApplication::processEvents();
    EXPECT_FALSE(await(accessibility.focusedElement({1, 0, 0})));
    EXPECT_FALSE(await(accessibility.setFocused({QStringLiteral(":1.1"), text})));
    EXPECT_LT(timer.elapsed(), 200);
}

TEST(FocusMemory, AnElementThatDeniesItsFocusMakesWayForTheOneBeforeIt) {
    FocusMemory memory;
    memory.gained(text);
    memory.gained(field); // told late, of a window that came forward
    memory.denied(field);
    EXPECT_THAT(memory.candidates(), ElementsAre(text));
}

TEST(FocusMemory, ADenialCountsNeitherForTheOnlyElementNorForOneThatLostItsFocus) {
    FocusMemory memory;
    memory.gained(text);
    memory.denied(text);
    EXPECT_THAT(memory.candidates(), ElementsAre(text));
    memory.gained(pane);
    memory.lost(pane); // to a grab of the keyboard
    memory.denied(pane);
    EXPECT_THAT(memory.candidates(), ElementsAre(pane, text));
}

} // namespace
} // namespace lorvane
