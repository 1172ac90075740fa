#pragma once

#include "Platform/Keyboard.h"

#include <memory>

namespace lorvane {

class X11Connection;

/// Types Control-V through the X server's test extension.
class XTestKeyboard final : public Keyboard {
public:
    XTestKeyboard();
    ~XTestKeyboard() override;

    /// Whether there is a server that takes synthetic keys.
    bool isAvailable();
    bool postPaste() override;

private:
    std::unique_ptr<X11Connection> connection_; ///< made when it is first needed
};

} // namespace lorvane
