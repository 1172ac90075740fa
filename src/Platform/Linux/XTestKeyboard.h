#pragma once

#include "Platform/Keyboard.h"
#include "Platform/Linux/X11Connection.h"

#include <memory>

namespace lorvane {

/// Types Control-V through the X server's test extension. While it looks where the keys go and
/// posts them, the server serves nobody else: the user can't leave in between.
class XTestKeyboard final : public Keyboard {
public:
    XTestKeyboard();
    ~XTestKeyboard() override;

    /// Whether there is a server that takes synthetic keys.
    bool isAvailable();
    bool postPaste(const RunningApplication &front) override;

private:
    bool isMouseButtonDown(const QDeadlineTimer &deadline);
    bool hasKeyboardFocus(xcb_window_t window, const QDeadlineTimer &deadline);

    std::unique_ptr<X11Connection> connection_; ///< made when it is first needed
};

} // namespace lorvane
