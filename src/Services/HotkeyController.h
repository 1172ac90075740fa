#pragma once

#include "Core/HoldToTalkState.h"
#include "Core/LocalizedError.h"
#include "Platform/HotKey.h"

#include <functional>

namespace lorvane {

/// Owns the one system-wide shortcut and turns its events into one press and one release. Main
/// thread only.
class HotkeyController {
public:
    class HotkeyError : public LocalizedError {
    public:
        /// The registration failed with the platform's status.
        explicit HotkeyError(qint32 status);
        const qint32 status;
    };

    using Callback = std::function<void()>;

    explicit HotkeyController(HotKey &hotKey) : hotKey_(hotKey) {}
    HotkeyController(const HotkeyController &) = delete;
    HotkeyController &operator=(const HotkeyController &) = delete;
    ~HotkeyController();

    /// Takes the shortcut; a second registration replaces the first. Throws HotkeyError and is
    /// unregistered then.
    void registerShortcut(Callback onPress, Callback onRelease);
    /// Harmless when nothing is registered.
    void unregister();

    /// Takes one event of the platform: 0 if it was ours, else `notHandled`.
    qint32 handle(const HotKeyEvent &event);

    static constexpr qint32 notHandled = -9874;
    /// The characters "LRVN".
    static constexpr quint32 signature = 0x4C52564E;

private:
    HotKey &hotKey_;
    bool isRegistered_ = false;
    Callback onPress_;
    Callback onRelease_;
    ShortcutKeyState keyState_;
};

} // namespace lorvane
