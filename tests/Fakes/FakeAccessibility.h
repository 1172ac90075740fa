#pragma once

#include "Platform/Accessibility.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <functional>

namespace lorvane {

/// Applications with the focus where the test puts it. `log` gets the calls that do something in
/// order ("setFocused bus/path"), if given.
class FakeAccessibility final : public Accessibility {
public:
    explicit FakeAccessibility(QStringList *log = nullptr) : log_(log) {}

    /// The focused element of each application, by process id.
    QHash<qint64, AccessibleElement> focused;
    /// What `setFocused` gives.
    bool canSetFocus = true;
    /// Whether an accepted `setFocused` moves the focus of the application with the element's bus.
    bool focusTakesEffect = true;
    /// Called in `setFocused`, before it takes effect.
    std::function<void(const AccessibleElement &)> onSetFocused;

    /// Called in `focusedElement`, before it answers.
    std::function<void()> onRead;

    int focusedElementCount = 0;
    QList<AccessibleElement> elementsSet;

    Async<std::optional<AccessibleElement>>
    focusedElement(RunningApplication application) override {
        ++focusedElementCount;
        if (onRead)
            onRead();
        const auto element = focused.constFind(application.processId);
        if (element == focused.constEnd())
            co_return std::nullopt;
        co_return *element;
    }

    Async<bool> setFocused(AccessibleElement element) override {
        if (log_)
            log_->append(QStringLiteral("setFocused %1%2").arg(element.bus, element.path));
        elementsSet.append(element);
        if (onSetFocused)
            onSetFocused(element);
        if (!canSetFocus)
            co_return false;
        if (focusTakesEffect) {
            for (AccessibleElement &other : focused) {
                if (other.bus == element.bus)
                    other = element;
            }
        }
        co_return true;
    }

private:
    QStringList *log_;
};

} // namespace lorvane
