#pragma once

#include "Platform/Keyboard.h"
#include "Platform/Linux/X11Connection.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <chrono>
#include <memory>
#include <vector>

namespace lorvane {

class KeyboardMap;

/// Types what pastes (PasteKeys.h) through the X server's test extension. While it looks where the
/// keys go and posts them, the server serves nobody else: the user can't leave in between.
class XTestKeyboard final : public Keyboard {
public:
    /// A paste is given up when the server hasn't answered all questions within the limit.
    explicit XTestKeyboard(std::chrono::milliseconds limit = std::chrono::milliseconds(200));
    ~XTestKeyboard() override;

    /// Whether there is a server that takes synthetic keys.
    bool isAvailable();
    bool postPaste(const RunningApplication &front) override;

private:
    void connect();
    void followClicks(const QDeadlineTimer &deadline);
    void handleEvent(const xcb_generic_event_t &event);
    std::vector<xcb_keycode_t> keysFor(xcb_window_t window, const KeyboardMap &map,
                                       const QDeadlineTimer &deadline);
    QByteArray windowClass(xcb_window_t window, const QDeadlineTimer &deadline);
    bool isClicking(const QDeadlineTimer &deadline);
    bool hasKeyboardFocus(xcb_window_t window, const QDeadlineTimer &deadline);

    const std::chrono::milliseconds limit_;
    std::unique_ptr<X11Connection> connection_; ///< made when it is first needed
    uint8_t inputExtension_ = 0;                ///< the opcode of its events, 0 without it
    QDeadlineTimer clickSettled_;
};

} // namespace lorvane
