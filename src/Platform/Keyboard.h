#pragma once

namespace lorvane {

/// The one keystroke that the program types. Main thread only.
class Keyboard {
public:
    Keyboard() = default;
    Keyboard(const Keyboard &) = delete;
    Keyboard &operator=(const Keyboard &) = delete;
    virtual ~Keyboard() = default;

    /// Posts the desktop's paste key to the window in front, whatever modifiers the user still
    /// holds. False if it can't be posted.
    virtual bool postPaste() = 0;
};

} // namespace lorvane
