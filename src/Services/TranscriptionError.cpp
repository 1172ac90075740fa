#include "Services/TranscriptionError.h"

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

QString description(TranscriptionError::Kind kind) {
    using Kind = TranscriptionError::Kind;
    switch (kind) {
    case Kind::alreadyRecording: return u"A dictation session is already in progress."_s;
    case Kind::microphoneDenied:
        return u"Allow microphone access in System Settings → Privacy & Security → Microphone."_s;
    case Kind::speechDenied:
        return u"Allow speech recognition in System Settings → Privacy & Security → "
               "Speech Recognition."_s;
    case Kind::unavailableLanguage:
        return u"Speech recognition is unavailable for this language. Try another language or "
               "check your connection."_s;
    case Kind::unavailableInput:
        return u"No microphone input is available. Check your audio input in System Settings."_s;
    case Kind::cancelled: return u"Dictation was cancelled."_s;
    }
    Q_UNREACHABLE();
}

} // namespace

TranscriptionError::TranscriptionError(Kind errorKind)
    : LocalizedError(description(errorKind)), kind(errorKind) {}

std::optional<SetupStep> TranscriptionError::permissionSetupStep() const {
    if (kind == Kind::microphoneDenied)
        return SetupStep::microphone;
    if (kind == Kind::speechDenied)
        return SetupStep::speech;
    return std::nullopt;
}

} // namespace lorvane
