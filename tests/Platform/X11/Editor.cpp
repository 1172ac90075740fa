#include "Platform/X11/Editor.h"

#include "Platform/Linux/KeyboardMap.h"

#include <gtest/gtest.h>

#include <string_view>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr xcb_keysym_t f = 0x66;

QStringList argumentsOf(std::string_view program) {
    if (program != "chromium")
        return {};
    return {QStringLiteral("--no-sandbox"),
            QStringLiteral("--no-first-run"),
            QStringLiteral("--disable-gpu"),
            QStringLiteral("--disable-dev-shm-usage"),
            QStringLiteral("--password-store=basic"),
            QStringLiteral("--user-data-dir=%1/chromium").arg(VirtualDesktop::current().folder()),
            QStringLiteral("--app=data:text/html,<textarea autofocus></textarea>")};
}

} // namespace

Editor::Editor(const char *program)
    : process_(
          VirtualDesktop::current().start(QString::fromLatin1(program), argumentsOf(program))) {
    const auto isInFront = [&] {
        const auto front = workspace_.frontmostApplication();
        if (front && front->processId == process_.processId())
            application_ = *front;
        return application_.processId != 0;
    };
    EXPECT_TRUE(waitUntil(isInFront, 30s)) << program;
}

void Editor::goToOtherField() {
    user_.press(KeySymbol::controlLeft);
    user_.tap(f);
    user_.release(KeySymbol::controlLeft);
}

} // namespace lorvane
