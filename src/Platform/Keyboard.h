#pragma once

#include "Platform/Workspace.h"

namespace lorvane {

/// The one keystroke that the program types. Main thread only.
class Keyboard {
public:
    Keyboard() = default;
    Keyboard(const Keyboard &) = delete;
    Keyboard &operator=(const Keyboard &) = delete;
    virtual ~Keyboard() = default;

    /// Posts the desktop's paste key, whatever modifiers the user still holds. False if it can't be
    /// posted, if it would go to another window than that of `front` by now, or if the user is just
    /// clicking somewhere.
    virtual bool postPaste(const RunningApplication &front) = 0;
};

} // namespace lorvane
