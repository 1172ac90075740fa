#pragma once

#include "Platform/HotKey.h"
#include "Platform/Linux/X11Connection.h"

#include <compare>
#include <memory>
#include <set>
#include <vector>

namespace lorvane {

class KeyboardMap;

/// Control, Alt and Space, grabbed on an X server, whatever the lock keys say. A held key reports
/// several presses and one release. The status of a refusal is the number of the X error (10 if
/// another program holds the combination); a negative one says that there is no X server to ask.
class XcbHotKey final : public HotKey {
public:
    XcbHotKey();
    ~XcbHotKey() override;

    qint32 registerHotKey(HotKeyId id, Handler handler) override;
    void unregisterHotKey() override;

private:
    struct Grab {
        xcb_keycode_t key = 0;
        uint16_t modifiers = 0;
        auto operator<=>(const Grab &) const = default;
    };

    struct Request {
        Grab grab;
        xcb_void_cookie_t cookie;
    };

    qint32 connectToServer();
    qint32 grabFirst();
    void followMap();
    bool requestGrabs(const KeyboardMap &map);
    qint32 takeGrabs();
    void handleEvent(const xcb_generic_event_t &event);
    void report(bool isPressed) const;

    std::unique_ptr<X11Connection> connection_; ///< present while registered
    uint8_t xkbEvent_ = 0;
    std::set<Grab> grabs_;
    std::vector<Request> requests_; ///< of grabs that the server hasn't answered yet
    bool isFollowing_ = false;      ///< questions about a new map are on their way
    bool isOutdated_ = false;       ///< the map has changed again meanwhile
    xcb_keycode_t pressedKey_ = 0;
    HotKeyId id_;
    Handler handler_;
};

} // namespace lorvane
