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

    /// Posts the key that pastes in the window of `front`, whatever modifiers the user still holds.
    /// False if it can't be posted or there is none, if it would go to another window by now, or if
    /// the user is just clicking somewhere.
    virtual bool postPaste(const RunningApplication &front) = 0;
};

} // namespace lorvane
