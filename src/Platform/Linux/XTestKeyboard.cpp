#include "Platform/Linux/XTestKeyboard.h"

#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/PasteKeys.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <ranges>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

// What applications need to look at a click, and to tell of the focus that it moved. It must end
// before the paste that follows a click on the button that ends a recording.
constexpr auto clickSettles = 350ms;

bool isDown(const xcb_query_keymap_reply_t &keymap, xcb_keycode_t key) {
    return keymap.keys[key / 8] & (1 << (key % 8));
}

void post(xcb_connection_t *connection, uint8_t type, xcb_keycode_t key) {
    xcb_test_fake_input(connection, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

} // namespace

XTestKeyboard::XTestKeyboard(std::chrono::milliseconds limit) : limit_(limit) {}

XTestKeyboard::~XTestKeyboard() = default;

bool XTestKeyboard::isAvailable() {
    if (!connection_ || connection_->error() != 0)
        connect();
    if (connection_->error() != 0)
        return false;
    const auto *const extension = xcb_get_extension_data(connection_->get(), &xcb_test_id);
    return extension && extension->present;
}

void XTestKeyboard::connect() {
    connection_ = std::make_unique<X11Connection>(
        [this](const xcb_generic_event_t &event) { handleEvent(event); });
    // The first question for an extension waits without a limit, as connecting does: not when the
    // key is to be posted.
    const QDeadlineTimer deadline(limit_);
    useXkb(*connection_, deadline);
    followClicks(deadline);
}

/// Has the server tell of each click, whatever window it goes to.
void XTestKeyboard::followClicks(const QDeadlineTimer &deadline) {
    inputExtension_ = 0;
    if (connection_->error() != 0)
        return;
    xcb_connection_t *const c = connection_->get();
    const auto *const extension = xcb_get_extension_data(c, &xcb_input_id);
    if (!extension || !extension->present)
        return;
    // The version that tells of clicks also while another program holds the pointer.
    const auto version = connection_->reply<xcb_input_xi_query_version_reply_t>(
        xcb_input_xi_query_version(c, 2, 1), deadline);
    if (!version)
        return;
    inputExtension_ = extension->major_opcode;
    const struct {
        xcb_input_event_mask_t head = {XCB_INPUT_DEVICE_ALL_MASTER, 1};
        uint32_t events = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
    } mask;
    xcb_input_xi_select_events(c, connection_->root(), 1, &mask.head);
    connection_->flush();
}

void XTestKeyboard::handleEvent(const xcb_generic_event_t &event) {
    constexpr uint32_t lastButton = 3; // the next ones are turns of the wheel
    const auto &click = reinterpret_cast<const xcb_input_raw_button_press_event_t &>(event);
    if (event.response_type == XCB_GE_GENERIC && click.extension == inputExtension_ &&
        click.event_type == XCB_INPUT_RAW_BUTTON_PRESS && click.detail <= lastButton)
        clickSettled_.setRemainingTime(clickSettles);
}

bool XTestKeyboard::postPaste(const RunningApplication &front) {
    if (!isAvailable())
        return false;
    const QDeadlineTimer deadline(limit_);
    xcb_connection_t *const c = connection_->get();
    const auto map = KeyboardMap::read(*connection_, deadline);
    if (!map)
        return false;
    const auto window = static_cast<xcb_window_t>(front.window);
    const std::vector<xcb_keycode_t> keystroke = keysFor(window, *map, deadline);
    if (keystroke.empty())
        return false;
    // What the user still holds would make another key of it. A held Space is the shortcut's grab,
    // which would take the keystroke for itself.
    auto keysToRelease = map->heldModifierKeys();
    for (const xcb_keycode_t space : map->keys(KeySymbol::space))
        keysToRelease.push_back(space);
    keysToRelease.push_back(keystroke.back());

    xcb_grab_server(c);
    const auto keymap = connection_->reply<xcb_query_keymap_reply_t>(xcb_query_keymap(c), deadline);
    const bool goesThere = keymap && !isClicking(deadline) && hasKeyboardFocus(window, deadline);
    if (goesThere) {
        for (const xcb_keycode_t key : keysToRelease) {
            if (isDown(*keymap, key))
                post(c, XCB_KEY_RELEASE, key);
        }
        for (const xcb_keycode_t key : keystroke)
            post(c, XCB_KEY_PRESS, key);
        for (const xcb_keycode_t key : keystroke | std::views::reverse)
            post(c, XCB_KEY_RELEASE, key);
    }
    xcb_ungrab_server(c);
    return connection_->flush() && goesThere;
}

/// The keys to press one after the other to paste into a window; none if that can't be done.
std::vector<xcb_keycode_t> XTestKeyboard::keysFor(xcb_window_t window, const KeyboardMap &map,
                                                  const QDeadlineTimer &deadline) {
    const auto wanted = pasteKeys(windowClass(window, deadline));
    if (!wanted)
        return {};
    std::vector<xcb_keysym_t> symbols = wanted->modifiers;
    symbols.push_back(wanted->key);
    std::vector<xcb_keycode_t> keys;
    for (const xcb_keysym_t symbol : symbols) {
        const auto found = map.keys(symbol);
        if (found.empty())
            return {};
        keys.push_back(found.front());
    }
    return keys;
}

/// The second of the two names that a window states, each ended by a zero; empty without.
QByteArray XTestKeyboard::windowClass(xcb_window_t window, const QDeadlineTimer &deadline) {
    constexpr uint32_t mostWords = 64;
    const auto answer = connection_->reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_->get(), false, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0,
                         mostWords),
        deadline);
    if (!answer || answer->format != 8)
        return {};
    const QByteArray names(static_cast<const char *>(xcb_get_property_value(answer.get())),
                           xcb_get_property_value_length(answer.get()));
    return names.split('\0').value(1);
}

/// Whether the user is just clicking, or was a moment ago. An application that hasn't looked at the
/// click yet doesn't know that it moves the focus.
bool XTestKeyboard::isClicking(const QDeadlineTimer &deadline) {
    constexpr unsigned int buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    const auto pointer = connection_->reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_->get(), connection_->root()), deadline);
    // What came before the answer is there by now.
    connection_->deliverEvents();
    return !pointer || (pointer->mask & buttons) != 0 || !clickSettled_.hasExpired();
}

/// Whether the keys go to a window or to a part of it. The window manager's word for it comes a
/// moment after the fact.
bool XTestKeyboard::hasKeyboardFocus(xcb_window_t window, const QDeadlineTimer &deadline) {
    constexpr int mostLevels = 32;
    xcb_connection_t *const c = connection_->get();
    const auto focus =
        connection_->reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(c), deadline);
    xcb_window_t holder = focus ? focus->focus : xcb_window_t(0);
    for (int level = 0; level < mostLevels && holder > XCB_INPUT_FOCUS_FOLLOW_KEYBOARD; ++level) {
        if (holder == window)
            return true;
        const auto tree =
            connection_->reply<xcb_query_tree_reply_t>(xcb_query_tree(c, holder), deadline);
        holder = tree ? tree->parent : xcb_window_t(0);
    }
    return false;
}

} // namespace lorvane
