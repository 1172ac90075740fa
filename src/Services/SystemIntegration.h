#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Ports.h"
#include "Platform/Task.h"
#include "Platform/Workspace.h"

#include <QString>

#include <optional>

namespace lorvane {

/// Delivers text to other applications and links to the system's settings. It keeps nothing between
/// calls. Main thread only.
class SystemIntegration {
public:
    /// Where the text of a dictation goes.
    struct PasteDestination {
        RunningApplication app;
        /// What held the keyboard focus in `app` when the destination was captured. The application
        /// was asked then, and its answer is on its way; absent if it wasn't asked.
        Task<std::optional<AccessibleElement>> focusedElement;
    };

    enum class PrivacyPane { microphone, speech, accessibility };

    explicit SystemIntegration(const Ports &ports) : ports_(ports) {}

    /// Puts the text on the pasteboard.
    void copy(const QString &text);

    /// The application in front and its focused element. With `allowOwnApp` false, `fallback`
    /// stands in for this application. Doesn't wait for any application.
    std::optional<PasteDestination>
    captureDestination(const std::optional<RunningApplication> &fallback, bool allowOwnApp = false);

    /// Puts the text on the pasteboard, then posts one paste key into the destination. True if the
    /// key was posted; it gives up, with false, rather than type into the wrong place.
    Async<bool> paste(QString text, std::optional<PasteDestination> destination);

    bool accessibilityGranted() const;
    void requestAccessibility();

    static QString privacyAddress(PrivacyPane pane);
    void openPrivacySettings(PrivacyPane pane);
    /// Shows this program in the desktop's file manager.
    void showApplication();

private:
    std::optional<RunningApplication> inFront(const RunningApplication &app) const;
    Async<bool> restoreFocus(RunningApplication app, AccessibleElement element);

    Ports ports_;
};

} // namespace lorvane
