#include "Platform/Linux/XcbHotKey.h"

#include "Platform/Linux/KeyboardMap.h"
#include "Platform/Linux/Xkb.h"

#include <array>
#include <chrono>
#include <utility>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto timeLimit = 500ms;
constexpr qint32 noAnswer = -XCB_CONN_ERROR;
constexpr qint32 badValue = 2; // the X error of a key that isn't there

// In the type of an event that another program has sent: no key was pressed.
constexpr uint8_t sentEventBit = 0x80;

} // namespace

XcbHotKey::XcbHotKey() = default;

XcbHotKey::~XcbHotKey() { unregisterHotKey(); }

qint32 XcbHotKey::registerHotKey(HotKeyId id, Handler handler) {
    unregisterHotKey();
    qint32 status = connectToServer();
    if (status == 0)
        status = grabFirst();
    if (status != 0) {
        unregisterHotKey();
        return status;
    }
    id_ = id;
    handler_ = std::move(handler);
    return 0;
}

void XcbHotKey::unregisterHotKey() {
    if (connection_ && connection_->error() == 0) {
        xcb_ungrab_key(connection_->get(), XCB_GRAB_ANY, connection_->root(), XCB_MOD_MASK_ANY);
        // Whoever takes the combination after this returns shall get it.
        connection_->synchronize(QDeadlineTimer(timeLimit));
    }
    connection_.reset();
    grabs_.clear();
    requests_.clear();
    isFollowing_ = isOutdated_ = false;
    pressedKey_ = 0;
    id_ = {};
    handler_ = nullptr;
}

qint32 XcbHotKey::connectToServer() {
    connection_ = std::make_unique<X11Connection>(
        [this](const xcb_generic_event_t &event) { handleEvent(event); });
    if (connection_->error() != 0)
        return -connection_->error();
    const QDeadlineTimer deadline(timeLimit);
    xkbEvent_ = useXkb(*connection_, deadline);
    if (xkbEvent_ == 0)
        return noAnswer;
    xcb_connection_t *const c = connection_->get();

    // Otherwise a held key comes as pairs of release and press.
    constexpr uint32_t detectable = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto cookie =
        xcb_xkb_per_client_flags(c, XCB_XKB_ID_USE_CORE_KBD, detectable, detectable, 0, 0, 0);

    // A program that speaks XKB isn't told of a new map unless it asks for it.
    constexpr uint16_t events =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t map = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(c, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, map, map, nullptr);

    const auto flags = connection_->reply<xcb_xkb_per_client_flags_reply_t>(cookie, deadline);
    return flags && (flags->value & detectable) ? 0 : noAnswer;
}

/// Waits for the server, as whoever registers waits for the status.
qint32 XcbHotKey::grabFirst() {
    const QDeadlineTimer deadline(timeLimit);
    const auto map = KeyboardMap::answer(*connection_, KeyboardMap::ask(*connection_), deadline);
    if (!map)
        return noAnswer;
    if (!requestGrabs(*map))
        return badValue;
    return connection_->synchronize(deadline) ? takeGrabs() : noAnswer;
}

/// Takes the keys of a new map. Nobody waits for the server, which may be slow with a new map.
void XcbHotKey::followMap() {
    isOutdated_ = isFollowing_;
    if (std::exchange(isFollowing_, true))
        return;
    const KeyboardMap::Question question = KeyboardMap::ask(*connection_);
    connection_->whenSynchronized([this, question] {
        if (const auto map = KeyboardMap::answer(*connection_, question, QDeadlineTimer(0)))
            requestGrabs(*map);
        connection_->whenSynchronized([this] {
            takeGrabs();
            isFollowing_ = false;
            if (isOutdated_)
                followMap();
        });
    });
}

/// Asks for what the map wants, and lets go what it doesn't want any more. Grabs that stay are left
/// alone: a press between an end and a new beginning would be lost. False if no key fits.
bool XcbHotKey::requestGrabs(const KeyboardMap &map) {
    const uint16_t alt = map.modifiers({KeySymbol::altLeft, KeySymbol::altRight});
    const auto combination =
        static_cast<uint16_t>(XCB_MOD_MASK_CONTROL | (alt ? alt : uint16_t(XCB_MOD_MASK_1)));
    const std::array<uint16_t, 3> locks = {XCB_MOD_MASK_LOCK, map.modifiers({KeySymbol::numLock}),
                                           map.modifiers({KeySymbol::scrollLock})};
    std::set<Grab> wanted;
    for (const xcb_keycode_t key : map.keys(KeySymbol::space)) {
        for (unsigned int subset = 0; subset < 1u << locks.size(); ++subset) {
            uint16_t modifiers = combination;
            for (unsigned int i = 0; i < locks.size(); ++i)
                modifiers |= subset & 1u << i ? locks[i] : uint16_t(0);
            wanted.insert({key, modifiers});
        }
    }
    if (wanted.empty())
        return false;

    xcb_connection_t *const c = connection_->get();
    for (const Grab &grab : grabs_) {
        if (!wanted.contains(grab))
            xcb_ungrab_key(c, grab.key, connection_->root(), grab.modifiers);
    }
    for (const Grab &grab : wanted) {
        if (!grabs_.contains(grab)) {
            requests_.push_back(
                {grab, xcb_grab_key_checked(c, false, connection_->root(), grab.modifiers, grab.key,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)});
        }
    }
    std::erase_if(grabs_, [&](const Grab &grab) { return !wanted.contains(grab); });
    return true;
}

/// Reads the server's answers, which have come. Gives the first refusal, or 0.
qint32 XcbHotKey::takeGrabs() {
    qint32 status = 0;
    for (const auto &[grab, cookie] : std::exchange(requests_, {})) {
        const XcbPtr<xcb_generic_error_t> refusal(xcb_request_check(connection_->get(), cookie));
        if (!refusal)
            grabs_.insert(grab);
        else if (status == 0)
            status = refusal->error_code;
    }
    return status;
}

void XcbHotKey::handleEvent(const xcb_generic_event_t &event) {
    if (event.response_type & sentEventBit)
        return;
    switch (event.response_type) {
    case XCB_KEY_PRESS:
        pressedKey_ = reinterpret_cast<const xcb_key_press_event_t &>(event).detail;
        report(true);
        break;
    case XCB_KEY_RELEASE:
        // Control or Alt may come up first: their releases aren't the shortcut's.
        if (reinterpret_cast<const xcb_key_release_event_t &>(event).detail == pressedKey_) {
            pressedKey_ = 0;
            report(false);
        }
        break;
    case XCB_MAPPING_NOTIFY: followMap(); break;
    default:
        if (event.response_type == xkbEvent_)
            followMap();
        break;
    }
}

void XcbHotKey::report(bool isPressed) const {
    const Handler handler = handler_; // it may unregister
    if (handler)
        handler({id_, isPressed});
}

} // namespace lorvane
