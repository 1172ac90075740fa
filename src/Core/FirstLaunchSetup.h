#pragma once

#include <QString>

#include <optional>

namespace lorvane {

/// The pages of the setup guide, in its order.
enum class SetupStep {
    welcome = 0,
    microphone = 1,
    speech = 2,
    accessibility = 3,
    practice = 4,
};

/// The step with this raw value; `welcome` for a value that no step has.
SetupStep setupStep(int rawValue);

namespace RecordingAccess {

/// The page that asks for the first missing grant; nothing when a dictation may start.
/// Accessibility isn't needed for one: without it the text ends on the pasteboard.
std::optional<SetupStep> requiredSetup(bool microphone, bool speech);

} // namespace RecordingAccess

/// Whether the guide opens at launch. It hangs on one boolean in a `Store`
/// (Platform/UserDefaults.h, or anything with its two operations), apart from the library file, so
/// that a damaged or restored library doesn't bring the guide back.
namespace FirstLaunchSetup {

inline const QString completionKey = QStringLiteral("Lorvane.didCompleteSetup");

template <typename Store>
bool shouldPresent(const Store &store) {
    return !store.boolean(completionKey);
}

/// The guide was finished or left early. Nothing takes this back.
template <typename Store>
void complete(Store &store) {
    store.setBoolean(completionKey, true);
}

} // namespace FirstLaunchSetup

} // namespace lorvane
