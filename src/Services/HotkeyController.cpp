#include "Services/HotkeyController.h"

#include <QThread>

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

constexpr HotKeyId hotKeyId{HotkeyController::signature, 1};

} // namespace

HotkeyController::HotkeyError::HotkeyError(qint32 platformStatus)
    : LocalizedError(u"Could not register Control–Option–Space (error "_s +
                     QString::number(platformStatus) +
                     u"). Another application may be using it."_s),
      status(platformStatus) {}

HotkeyController::~HotkeyController() {
    if (isRegistered_)
        hotKey_.unregisterHotKey();
}

void HotkeyController::registerShortcut(Callback onPress, Callback onRelease) {
    unregister();
    onPress_ = std::move(onPress);
    onRelease_ = std::move(onRelease);
    const qint32 status =
        hotKey_.registerHotKey(hotKeyId, [this](const HotKeyEvent &event) { handle(event); });
    if (status != 0) {
        unregister();
        throw HotkeyError(status);
    }
    isRegistered_ = true;
}

void HotkeyController::unregister() {
    if (isRegistered_)
        hotKey_.unregisterHotKey();
    isRegistered_ = false;
    onPress_ = nullptr;
    onRelease_ = nullptr;
    keyState_ = ShortcutKeyState();
}

qint32 HotkeyController::handle(const HotKeyEvent &event) {
    if (const auto *application = QCoreApplication::instance();
        application && QThread::currentThread() != application->thread())
        qFatal("A shortcut event came on another thread than the main thread");
    if (event.hotKey != hotKeyId)
        return notHandled;
    if (keyState_.transition(event.isPressed)) {
        // A copy, since the callback may unregister.
        const Callback callback = event.isPressed ? onPress_ : onRelease_;
        if (callback)
            callback();
    }
    return 0;
}

} // namespace lorvane
