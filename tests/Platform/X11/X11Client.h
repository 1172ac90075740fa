#pragma once

#include "Platform/Linux/X11Connection.h"

#include <QString>

#include <vector>

namespace lorvane {

/// A client of the X server that plays the user and other programs.
class X11Client {
public:
    X11Client();

    X11Connection &connection() { return connection_; }
    /// Sends everything and waits until the server has worked on it.
    void synchronize();

    /// The first key that gives a symbol in any layout.
    xcb_keycode_t key(xcb_keysym_t symbol);
    void press(xcb_keysym_t symbol) { pressKey(key(symbol)); }
    void release(xcb_keysym_t symbol) { releaseKey(key(symbol)); }
    void tap(xcb_keysym_t symbol);
    void pressKey(xcb_keycode_t key);
    void releaseKey(xcb_keycode_t key);
    /// Presses or releases the left button of the mouse.
    void button(bool isPressed);
    bool isDown(xcb_keycode_t key);
    /// The modifiers that are held or locked, as bits of XCB_MOD_MASK_...
    uint16_t modifiers();
    /// Goes to one of the layouts.
    void lockGroup(uint8_t group);
    /// Gives a key another symbol, for all layouts.
    void map(xcb_keycode_t key, xcb_keysym_t symbol);

    /// Grabs a key as another program would; gives the number of the X error or 0.
    int grab(xcb_keycode_t key, uint16_t modifiers);

    /// Shows a window of a process; 0 leaves the process unsaid.
    xcb_window_t showWindow(qint64 processId);
    /// States what program a window belongs to.
    void setClass(xcb_window_t window, const QByteArray &instance, const QByteArray &name);
    /// Shows a window within a window.
    xcb_window_t showPart(xcb_window_t window);
    void destroyWindow(xcb_window_t window);
    void iconify(xcb_window_t window);
    /// Asks the window manager, as a pager does.
    void ask(xcb_window_t window, const char *message, uint32_t first, uint32_t second = 0);
    /// Has the window manager bring a window to the front, and waits until it is there.
    bool bringForward(xcb_window_t window);
    /// A 32-bit property, or `absent`.
    uint32_t value(xcb_window_t window, const char *name, xcb_atom_t type, uint32_t absent = 0);
    xcb_window_t activeWindow();

    /// The key events that came to its windows: state and key of each press.
    std::vector<xcb_key_press_event_t> keyPresses;

private:
    X11Connection connection_;
};

} // namespace lorvane
