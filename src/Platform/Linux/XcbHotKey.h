#pragma once

#include "Platform/HotKey.h"
#include "Platform/Linux/X11Connection.h"

#include <compare>
#include <memory>
#include <set>

namespace lorvane {

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

    qint32 connectToServer();
    qint32 updateGrabs();
    void handleEvent(const xcb_generic_event_t &event);
    void report(bool isPressed) const;

    std::unique_ptr<X11Connection> connection_; ///< present while registered
    uint8_t xkbEvent_ = 0;
    std::set<Grab> grabs_;
    xcb_keycode_t pressedKey_ = 0;
    HotKeyId id_;
    Handler handler_;
};

} // namespace lorvane
