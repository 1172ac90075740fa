#pragma once

#include "Platform/Task.h"
#include "Platform/Workspace.h"

#include <QString>

#include <optional>

namespace lorvane {

/// A field of some application, as the accessibility interface names it.
struct AccessibleElement {
    QString bus;
    QString path;
    bool operator==(const AccessibleElement &) const = default;
};

/// Reads and sets the keyboard focus inside applications. Main thread only; nothing here holds it
/// up, and each call ends within half a second, also when the application hangs.
class Accessibility {
public:
    Accessibility() = default;
    Accessibility(const Accessibility &) = delete;
    Accessibility &operator=(const Accessibility &) = delete;
    virtual ~Accessibility() = default;

    /// The element that holds the keyboard focus in an application, if it says so.
    virtual Async<std::optional<AccessibleElement>>
    focusedElement(RunningApplication application) = 0;

    /// Gives an element the keyboard focus; false if it refuses or doesn't answer.
    virtual Async<bool> setFocused(AccessibleElement element) = 0;
};

} // namespace lorvane
