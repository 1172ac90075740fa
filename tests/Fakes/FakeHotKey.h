#pragma once

#include "Platform/HotKey.h"

#include <QStringList>

#include <utility>

namespace lorvane {

/// A hot key that the test presses. `log` gets the calls in order, if given.
class FakeHotKey final : public HotKey {
public:
    explicit FakeHotKey(QStringList *log = nullptr) : log_(log) {}

    /// What `registerHotKey` gives; anything but 0 leaves nothing registered.
    qint32 status = 0;
    int registerCount = 0;
    int unregisterCount = 0;

    bool isRegistered() const { return static_cast<bool>(handler_); }
    HotKeyId registeredId() const { return id_; }

    void press() { deliver(id_, true); }
    void release() { deliver(id_, false); }
    /// Delivers an event of any hot key, if a handler is there to take it.
    void deliver(HotKeyId id, bool isPressed) {
        const Handler handler = handler_; // it may unregister
        if (handler)
            handler({id, isPressed});
    }

    qint32 registerHotKey(HotKeyId id, Handler handler) override {
        ++registerCount;
        record(QStringLiteral("registerHotKey"));
        id_ = {};
        handler_ = nullptr;
        if (status != 0)
            return status;
        id_ = id;
        handler_ = std::move(handler);
        return 0;
    }

    void unregisterHotKey() override {
        ++unregisterCount;
        record(QStringLiteral("unregisterHotKey"));
        id_ = {};
        handler_ = nullptr;
    }

private:
    void record(const QString &call) {
        if (log_)
            log_->append(call);
    }

    QStringList *log_;
    HotKeyId id_;
    Handler handler_;
};

} // namespace lorvane
