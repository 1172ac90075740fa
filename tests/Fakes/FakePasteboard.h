#pragma once

#include "Platform/Pasteboard.h"

#include <QStringList>

#include <optional>

namespace lorvane {

/// A pasteboard that keeps the last string. `log` gets the calls in order, if given.
class FakePasteboard final : public Pasteboard {
public:
    explicit FakePasteboard(QStringList *log = nullptr) : log_(log) {}

    std::optional<QString> text; ///< absent until something was put there
    int setCount = 0;

    void setText(const QString &newText) override {
        text = newText;
        ++setCount;
        if (log_)
            log_->append(QStringLiteral("setText"));
    }

private:
    QStringList *log_;
};

} // namespace lorvane
