#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace lorvane {

/// An application that has, or had, a window on the screen.
struct RunningApplication {
    qint64 processId = 0;
    /// The platform's number of the window that was in front when this was read; 0 if unknown.
    quint64 window = 0;
    /// Tells two processes apart that had the same id; 0 if unknown.
    quint64 startTime = 0;

    bool operator==(const RunningApplication &) const = default;
};

/// The applications on the screen. Main thread only; each call ends within a fifth of a second.
class Workspace {
public:
    using Activated = std::function<void(const RunningApplication &)>;

    Workspace() = default;
    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;
    virtual ~Workspace() = default;

    /// The application whose window is in front, this one included.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    virtual bool isTerminated(const RunningApplication &application) = 0;
    /// Asks for the application to come forward; false if that can't be asked for.
    virtual bool activate(const RunningApplication &application) = 0;
    /// Calls `activated` on the main thread each time an application comes to the front.
    virtual void observeActivation(Activated activated) = 0;

    /// Opens an address with whatever the desktop has for it; failures are ignored.
    virtual void openAddress(const QString &address) = 0;
    /// Shows a file in the desktop's file manager; failures are ignored.
    virtual void showFile(const QString &path) = 0;
};

} // namespace lorvane
