#pragma once

#include "Platform/Linux/X11Connection.h"
#include "Platform/Workspace.h"

#include <memory>
#include <optional>
#include <vector>

namespace lorvane {

/// The applications of an X11 desktop, as its window manager tells of them (EWMH,
/// https://specifications.freedesktop.org/wm-spec/).
class XcbWorkspace final : public Workspace {
public:
    XcbWorkspace();
    ~XcbWorkspace() override;

    std::optional<RunningApplication> frontmostApplication() override;
    bool isTerminated(const RunningApplication &application) override;
    bool activate(const RunningApplication &application) override;
    void observeActivation(Activated activated) override;

    /// Hands what the desktop knows to xdg-open; other addresses do nothing.
    void openAddress(const QString &address) override;
    void showFile(const QString &path) override;

private:
    void handleEvent(const xcb_generic_event_t &event);
    std::optional<RunningApplication> frontmostApplication(const QDeadlineTimer &deadline);
    std::optional<std::vector<uint32_t>> property(xcb_window_t window, const char *name,
                                                  xcb_atom_t type, const QDeadlineTimer &deadline);
    uint32_t value(xcb_window_t window, const char *name, xcb_atom_t type, uint32_t absent,
                   const QDeadlineTimer &deadline);
    qint64 processId(xcb_window_t window, const QDeadlineTimer &deadline);
    bool hasWindowManager(const QDeadlineTimer &deadline);
    xcb_window_t windowToActivate(const RunningApplication &application,
                                  const QDeadlineTimer &deadline);
    void send(xcb_window_t window, xcb_atom_t message, uint32_t first, uint32_t second);

    std::unique_ptr<X11Connection> connection_;
    xcb_atom_t activeWindow_ = 0;
    std::vector<Activated> observers_;
    std::optional<RunningApplication> lastActivated_;
};

} // namespace lorvane
