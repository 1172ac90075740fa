#pragma once

#include "Platform/Linux/XcbWorkspace.h"
#include "Platform/X11/VirtualDesktop.h"
#include "Platform/X11/X11Client.h"

namespace lorvane {

/// An editor that nobody here wrote, with its window in front: "mousepad" (GTK), "featherpad" (Qt)
/// or "chromium" with the cursor in a text area.
class Editor {
public:
    explicit Editor(const char *program);
    ~Editor() { end(); }

    const RunningApplication &application() const { return application_; }
    pid_t processId() const { return static_cast<pid_t>(application_.processId); }
    void end() { VirtualDesktop::current().end(process_); }

    /// Opens the editor's search field, which takes the focus from the text.
    void goToOtherField();

private:
    QProcess &process_;
    XcbWorkspace workspace_;
    X11Client user_;
    RunningApplication application_;
};

} // namespace lorvane
