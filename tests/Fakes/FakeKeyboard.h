#pragma once

#include "Platform/Keyboard.h"

#include <QStringList>

#include <functional>

namespace lorvane {

/// A keyboard that types nothing. `log` gets "postPaste" for each paste key posted, if given.
class FakeKeyboard final : public Keyboard {
public:
    explicit FakeKeyboard(QStringList *log = nullptr) : log_(log) {}

    bool canPost = true;
    /// Called when a paste key is posted, for a test that plays the application which gets it.
    std::function<void()> onPaste;
    int pasteCount = 0;
    RunningApplication lastFront;

    bool postPaste(const RunningApplication &front) override {
        if (!canPost)
            return false;
        ++pasteCount;
        lastFront = front;
        if (log_)
            log_->append(QStringLiteral("postPaste"));
        if (onPaste)
            onPaste();
        return true;
    }

private:
    QStringList *log_;
};

} // namespace lorvane
