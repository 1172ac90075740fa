#include "Core/HoldToTalkState.h"

namespace lorvane {

bool HoldToTalkState::isHeld() const {
    return phase_ == Phase::preparing || phase_ == Phase::recording;
}

bool HoldToTalkState::press() {
    if (phase_ != Phase::idle)
        return false;
    phase_ = Phase::preparing;
    return true;
}

bool HoldToTalkState::recordingStarted() {
    if (phase_ != Phase::preparing)
        return false;
    phase_ = Phase::recording;
    return true;
}

HoldToTalkState::ReleaseAction HoldToTalkState::release() {
    switch (phase_) {
    case Phase::preparing: phase_ = Phase::idle; return ReleaseAction::cancelPreparation;
    case Phase::recording: phase_ = Phase::finishing; return ReleaseAction::finish;
    case Phase::idle:
    case Phase::finishing: break;
    }
    return ReleaseAction::none;
}

void HoldToTalkState::reset() { phase_ = Phase::idle; }

bool ShortcutKeyState::transition(bool down) {
    if (down == isDown_)
        return false;
    isDown_ = down;
    return true;
}

} // namespace lorvane
