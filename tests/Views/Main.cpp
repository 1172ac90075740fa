#include "Views/Shell/Graphics.h"

#include <QAccessible>
#include <QApplication>
#include <QLocale>

#include <gtest/gtest.h>

/// Qt Quick's software renderer keeps pictures of closed windows until the process ends. Its stacks
/// end in Qt: what our own code leaks is still reported.
/// The name is the sanitizer's.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libQt6Core.so\nleak:libQt6Gui.so\nleak:libQt6Quick.so\n";
}

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("TZ", "UTC");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    lorvane::setUpGraphics();
    QAccessible::setActive(true);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
