#include "Platform/X11/X11Client.h"

#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/Xkb.h"
#include "Platform/X11/VirtualDesktop.h"

#include <xcb/xtest.h>

#include <chrono>
#include <stdexcept>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

const QDeadlineTimer soon() { return QDeadlineTimer(5s); }

} // namespace

X11Client::X11Client()
    : connection_([this](const xcb_generic_event_t &event) {
          if (event.response_type == XCB_KEY_PRESS)
              keyPresses.push_back(reinterpret_cast<const xcb_key_press_event_t &>(event));
      }) {
    if (connection_.error() != 0)
        throw std::runtime_error("no X server");
}

void X11Client::synchronize() {
    if (!connection_.synchronize(soon()))
        throw std::runtime_error("the X server doesn't answer");
}

xcb_keycode_t X11Client::key(xcb_keysym_t symbol) {
    const auto map = KeyboardMap::read(connection_, soon());
    const auto keys = map ? map->keys(symbol) : std::vector<xcb_keycode_t>();
    if (keys.empty())
        throw std::runtime_error("no such key");
    return keys.front();
}

void X11Client::tap(xcb_keysym_t symbol) {
    press(symbol);
    release(symbol);
}

void X11Client::pressKey(xcb_keycode_t key) {
    xcb_test_fake_input(connection_.get(), XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    synchronize();
}

void X11Client::releaseKey(xcb_keycode_t key) {
    xcb_test_fake_input(connection_.get(), XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                        0);
    synchronize();
}

void X11Client::button(bool isPressed) {
    xcb_test_fake_input(connection_.get(), isPressed ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1,
                        XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    synchronize();
}

bool X11Client::isDown(xcb_keycode_t key) {
    const auto keymap =
        connection_.reply<xcb_query_keymap_reply_t>(xcb_query_keymap(connection_.get()), soon());
    return keymap && (keymap->keys[key / 8] & (1 << (key % 8)));
}

uint16_t X11Client::modifiers() {
    constexpr uint16_t all = 0xff;
    const auto pointer = connection_.reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_.get(), connection_.root()), soon());
    return pointer ? pointer->mask & all : all;
}

void X11Client::lockGroup(uint8_t group) {
    useXkb(connection_, soon());
    xcb_xkb_latch_lock_state(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, true, group, 0,
                             false, 0);
    synchronize();
}

void X11Client::map(xcb_keycode_t key, xcb_keysym_t symbol) {
    const xcb_keysym_t symbols[] = {symbol, symbol};
    xcb_change_keyboard_mapping(connection_.get(), 1, key, 2, symbols);
    synchronize();
}

int X11Client::grab(xcb_keycode_t key, uint16_t modifiers) {
    const auto cookie =
        xcb_grab_key_checked(connection_.get(), false, connection_.root(), modifiers, key,
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(connection_.get(), cookie));
    return error ? error->error_code : 0;
}

xcb_window_t X11Client::showWindow(qint64 processId) {
    xcb_connection_t *const c = connection_.get();
    const xcb_window_t window = xcb_generate_id(c);
    const uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, connection_.root(), 0, 0, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    if (processId != 0) {
        const auto id = static_cast<uint32_t>(processId);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window,
                            connection_.atom("_NET_WM_PID", soon()), XCB_ATOM_CARDINAL, 32, 1, &id);
    }
    xcb_map_window(c, window);
    synchronize();
    return window;
}

void X11Client::setClass(xcb_window_t window, const QByteArray &instance, const QByteArray &name) {
    const QByteArray names = instance + '\0' + name + '\0';
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, static_cast<uint32_t>(names.size()), names.constData());
    synchronize();
}

xcb_window_t X11Client::showPart(xcb_window_t window) {
    xcb_connection_t *const c = connection_.get();
    const xcb_window_t part = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, part, window, 10, 10, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(c, part);
    synchronize();
    return part;
}

void X11Client::destroyWindow(xcb_window_t window) {
    xcb_destroy_window(connection_.get(), window);
    synchronize();
}

void X11Client::iconify(xcb_window_t window) {
    constexpr uint32_t iconicState = 3;
    ask(window, "WM_CHANGE_STATE", iconicState);
}

void X11Client::ask(xcb_window_t window, const char *message, uint32_t first, uint32_t second) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection_.atom(message, soon());
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    xcb_send_event(connection_.get(), false, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
    synchronize();
}

bool X11Client::bringForward(xcb_window_t window) {
    constexpr uint32_t fromPager = 2;
    // A window manager that has just started may not know the window yet.
    return waitUntil([&] {
        ask(window, "_NET_ACTIVE_WINDOW", fromPager);
        return activeWindow() == window;
    });
}

uint32_t X11Client::value(xcb_window_t window, const char *name, xcb_atom_t type, uint32_t absent) {
    const xcb_atom_t atom = connection_.atom(name, soon());
    const auto property = connection_.reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_.get(), false, window, atom, type, 0, 1), soon());
    if (!property || property->value_len != 1)
        return absent;
    return *static_cast<const uint32_t *>(xcb_get_property_value(property.get()));
}

xcb_window_t X11Client::activeWindow() {
    return value(connection_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
}

} // namespace lorvane
