#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

#include <optional>
#include <vector>

namespace lorvane {

/// One keystroke: a key, and what is held down with it.
struct PasteKeys {
    std::vector<xcb_keysym_t> modifiers;
    xcb_keysym_t key;
};

/// What pastes the clipboard into a window, by the class that the window states (the second name of
/// WM_CLASS). Control-V, except in programs that use it for something else; none for those where
/// no single keystroke does it. Thread-safe.
std::optional<PasteKeys> pasteKeys(const QByteArray &windowClass);

} // namespace lorvane
