#include "Platform/Linux/PasteKeys.h"

#include "Platform/Linux/KeyboardMap.h"

#include <QSet>

namespace lorvane {

// Each of these programs was tried with its own settings, in the version that Debian 12 has.
std::optional<PasteKeys> pasteKeys(const QByteArray &windowClass) {
    using namespace KeySymbol;
    static const QSet<QByteArray> terminals = {
        "alacritty",  "cool-retro-term", "gnome-terminal", "kitty",         "konsole",
        "lxterminal", "mate-terminal",   "qterminal",      "sakura",        "st-256color",
        "terminator", "tilda",           "tilix",          "xfce4-terminal"};
    // xterm pastes the selection only, and Vim has no keystroke that is none of its commands.
    static const QSet<QByteArray> without = {"gvim", "uxterm", "xterm"};

    const QByteArray name = windowClass.toLower();
    if (without.contains(name))
        return std::nullopt;
    if (terminals.contains(name))
        return PasteKeys{{controlLeft, shiftLeft}, v};
    if (name == "urxvt")
        return PasteKeys{{controlLeft, altLeft}, v};
    if (name == "emacs")
        return PasteKeys{{shiftLeft}, insert};
    return PasteKeys{{controlLeft}, v};
}

} // namespace lorvane
