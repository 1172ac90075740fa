#pragma once

#include "Core/FirstLaunchSetup.h"
#include "Core/LocalizedError.h"

#include <optional>

namespace lorvane {

/// Why a dictation session could not start or go on.
class TranscriptionError : public LocalizedError {
public:
    enum class Kind {
        alreadyRecording,
        microphoneDenied,
        speechDenied,
        unavailableLanguage,
        unavailableInput,
        cancelled,
    };

    explicit TranscriptionError(Kind kind);

    const Kind kind;

    /// The step of the setup guide that mends a denied grant; none for all other errors.
    std::optional<SetupStep> permissionSetupStep() const;
};

} // namespace lorvane
