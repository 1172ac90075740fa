#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

#include <optional>

namespace lorvane {

/// Rectangles in logical pixels of the whole desktop, y growing downward.
struct Screen {
    QRect frame;
    QRect visibleFrame; ///< without panels and docks
    bool operator==(const Screen &) const = default;
};

/// The monitors and the pointer. Main thread only.
class Screens {
public:
    Screens() = default;
    Screens(const Screens &) = delete;
    Screens &operator=(const Screens &) = delete;
    virtual ~Screens() = default;

    virtual QList<Screen> screens() = 0;
    virtual std::optional<Screen> mainScreen() = 0;
    virtual QPoint pointer() = 0;
};

} // namespace lorvane
