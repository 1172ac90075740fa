#pragma once

#include <QtGlobal>

#include <functional>

namespace lorvane {

struct HotKeyId {
    quint32 signature = 0;
    quint32 id = 0;
    bool operator==(const HotKeyId &) const = default;
};

struct HotKeyEvent {
    HotKeyId hotKey;
    bool isPressed = false;
};

/// One system-wide key combination: Control, Alt and Space. Main thread only.
class HotKey {
public:
    /// Called on the main thread. A key that is held down may report several presses.
    using Handler = std::function<void(const HotKeyEvent &)>;

    HotKey() = default;
    HotKey(const HotKey &) = delete;
    HotKey &operator=(const HotKey &) = delete;
    virtual ~HotKey() = default;

    /// Takes the combination for the whole system. Gives 0, or the platform's error number.
    virtual qint32 registerHotKey(HotKeyId id, Handler handler) = 0;
    /// Harmless when nothing is registered.
    virtual void unregisterHotKey() = 0;
};

} // namespace lorvane
