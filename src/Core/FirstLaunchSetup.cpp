#include "Core/FirstLaunchSetup.h"

namespace lorvane {

SetupStep setupStep(int rawValue) {
    const bool known = rawValue >= static_cast<int>(SetupStep::welcome) &&
                       rawValue <= static_cast<int>(SetupStep::practice);
    return known ? static_cast<SetupStep>(rawValue) : SetupStep::welcome;
}

std::optional<SetupStep> RecordingAccess::requiredSetup(bool microphone, bool speech) {
    if (!microphone)
        return SetupStep::microphone;
    if (!speech)
        return SetupStep::speech;
    return std::nullopt;
}

} // namespace lorvane
