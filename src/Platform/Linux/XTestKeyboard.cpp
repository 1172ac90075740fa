#include "Platform/Linux/XTestKeyboard.h"

#include "Platform/Linux/KeyboardMap.h"

#include <xcb/xtest.h>

#include <chrono>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto timeLimit = 200ms;

bool isDown(const xcb_query_keymap_reply_t &keymap, xcb_keycode_t key) {
    return keymap.keys[key / 8] & (1 << (key % 8));
}

void post(xcb_connection_t *connection, uint8_t type, xcb_keycode_t key) {
    xcb_test_fake_input(connection, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

} // namespace

XTestKeyboard::XTestKeyboard() = default;

XTestKeyboard::~XTestKeyboard() = default;

bool XTestKeyboard::isAvailable() {
    if (!connection_ || connection_->error() != 0)
        connection_ = std::make_unique<X11Connection>();
    if (connection_->error() != 0)
        return false;
    const auto *const extension = xcb_get_extension_data(connection_->get(), &xcb_test_id);
    return extension && extension->present;
}

bool XTestKeyboard::postPaste() {
    if (!isAvailable())
        return false;
    const QDeadlineTimer deadline(timeLimit);
    xcb_connection_t *const c = connection_->get();
    const auto keymapCookie = xcb_query_keymap(c);
    const auto map = KeyboardMap::read(*connection_, deadline);
    const auto keymap = connection_->reply<xcb_query_keymap_reply_t>(keymapCookie, deadline);
    if (!map || !keymap)
        return false;
    const auto controlKeys = map->keys(KeySymbol::controlLeft);
    const auto pasteKeys = map->keys(KeySymbol::v);
    if (controlKeys.empty() || pasteKeys.empty())
        return false;
    const xcb_keycode_t control = controlKeys.front();
    const xcb_keycode_t paste = pasteKeys.front();

    // What the user still holds would make another key of it. A held Space is the shortcut's grab,
    // which would take the keystroke for itself.
    auto keysToRelease = map->heldModifierKeys();
    for (const xcb_keycode_t space : map->keys(KeySymbol::space))
        keysToRelease.push_back(space);
    keysToRelease.push_back(paste);
    for (const xcb_keycode_t key : keysToRelease) {
        if (isDown(*keymap, key))
            post(c, XCB_KEY_RELEASE, key);
    }

    post(c, XCB_KEY_PRESS, control);
    post(c, XCB_KEY_PRESS, paste);
    post(c, XCB_KEY_RELEASE, paste);
    post(c, XCB_KEY_RELEASE, control);
    return connection_->flush();
}

} // namespace lorvane
