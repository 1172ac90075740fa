#include "Services/SystemIntegration.h"

#include "Platform/Keyboard.h"
#include "Platform/Pasteboard.h"
#include "Platform/Permissions.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {

namespace {

// What applications need to take a new front window, or a new focus, into account.
constexpr auto activationWait = 180ms;
constexpr auto focusWait = 80ms;

} // namespace

void SystemIntegration::copy(const QString &text) { ports_.pasteboard.setText(text); }

std::optional<SystemIntegration::PasteDestination>
SystemIntegration::captureDestination(const std::optional<RunningApplication> &fallback,
                                      bool allowOwnApp) {
    const auto frontmost = ports_.workspace.frontmostApplication();
    const bool takeFrontmost =
        frontmost && (allowOwnApp || frontmost->processId != QCoreApplication::applicationPid());
    const auto &candidate = takeFrontmost ? frontmost : fallback;
    if (!candidate || ports_.workspace.isTerminated(*candidate))
        return std::nullopt;

    PasteDestination destination{*candidate, {}};
    if (accessibilityGranted())
        destination.focusedElement = Task<std::optional<AccessibleElement>>::run(
            ports_.accessibility.focusedElement(*candidate));
    return destination;
}

Async<bool> SystemIntegration::paste(QString text, std::optional<PasteDestination> destination) {
    const std::stop_token cancellation = co_await currentCancellation;
    copy(text);
    if (cancellation.stop_requested() || !accessibilityGranted() || !destination)
        co_return false;
    const RunningApplication app = destination->app;
    if (ports_.workspace.isTerminated(app))
        co_return false;
    if (!inFront(app) && !ports_.workspace.activate(app))
        co_return false;

    co_await sleep(ports_.clock, activationWait);
    if (cancellation.stop_requested() || !inFront(app))
        co_return false;
    if (const auto captured = destination->focusedElement) {
        const std::optional<AccessibleElement> element = co_await captured;
        const bool restored = !element || co_await restoreFocus(app, *element);
        if (!restored || cancellation.stop_requested())
            co_return false;
    }
    // Reading the focus took a moment, in which the user may have left.
    const auto front = inFront(app);
    co_return front &&ports_.keyboard.postPaste(*front);
}

Async<bool> SystemIntegration::restoreFocus(RunningApplication app, AccessibleElement element) {
    const std::stop_token cancellation = co_await currentCancellation;
    const auto present = co_await ports_.accessibility.focusedElement(app);
    if (present == element)
        co_return true;
    // Reading took a moment, in which the user may have left.
    if (cancellation.stop_requested() || !inFront(app))
        co_return false;
    const bool isSet = co_await ports_.accessibility.setFocused(element);
    if (!isSet)
        co_return false;
    co_await sleep(ports_.clock, focusWait);
    if (cancellation.stop_requested() || !inFront(app))
        co_return false;
    const auto settled = co_await ports_.accessibility.focusedElement(app);
    co_return settled == element;
}

/// The application with the window of it that is in front, if one is.
std::optional<RunningApplication> SystemIntegration::inFront(const RunningApplication &app) const {
    const auto frontmost = ports_.workspace.frontmostApplication();
    return frontmost && frontmost->processId == app.processId ? frontmost : std::nullopt;
}

bool SystemIntegration::accessibilityGranted() const {
    return ports_.permissions.accessibilityTrusted();
}

void SystemIntegration::requestAccessibility() { ports_.permissions.requestAccessibility(); }

QString SystemIntegration::privacyAddress(PrivacyPane pane) {
    const QString prefix = u"x-apple.systempreferences:com.apple.preference.security?"_s;
    switch (pane) {
    case PrivacyPane::microphone: return prefix + u"Privacy_Microphone"_s;
    case PrivacyPane::speech: return prefix + u"Privacy_SpeechRecognition"_s;
    case PrivacyPane::accessibility: return prefix + u"Privacy_Accessibility"_s;
    }
    Q_UNREACHABLE();
}

void SystemIntegration::openPrivacySettings(PrivacyPane pane) {
    ports_.workspace.openAddress(privacyAddress(pane));
}

void SystemIntegration::showApplication() {
    ports_.workspace.showFile(QCoreApplication::applicationFilePath());
}

} // namespace lorvane
