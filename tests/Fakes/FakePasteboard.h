#pragma once

#include "Platform/Pasteboard.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace lorvane {

/// A pasteboard that keeps the last string. `log` gets the calls in order, if given.
class FakePasteboard final : public Pasteboard {
public:
    explicit FakePasteboard(QStringList *log = nullptr) : log_(log) {}

    std::optional<QString> text; ///< absent until something was put there
    int setCount = 0;
    std::function<void()> onSet; ///< called after each, if given

    void setText(const QString &newText) override {
        text = newText;
        ++setCount;
        if (log_)
            log_->append(QStringLiteral("setText"));
        if (onSet)
            onSet();
    }

private:
    QStringList *log_;
};

} // namespace lorvane
