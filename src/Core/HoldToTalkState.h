#pragma once

namespace lorvane {

/// One press-and-hold of the shortcut, from the key going down to the text being done. It knows
/// nothing of audio or time; whoever drives the recording asks it what each event means.
class HoldToTalkState {
public:
    enum class Phase {
        idle,      ///< no gesture is in progress
        preparing, ///< the key is down, the recording has been asked for but isn't running yet
        recording, ///< the key is down and the recording is running
        finishing, ///< the key was released; the final transcription is under way
    };

    enum class ReleaseAction {
        none,
        cancelPreparation, ///< abandon the recording that is being prepared
        finish,            ///< end the running recording and finish the dictation
    };

    Phase phase() const { return phase_; }

    /// True while the key is down for a gesture: in `preparing` and `recording`.
    bool isHeld() const;

    /// True tells the caller to start a recording now.
    bool press();

    /// To be called when the recording has become ready. False means that nobody holds the key any
    /// more and the recording is to be thrown away.
    bool recordingStarted();

    ReleaseAction release();

    /// Back to `idle`, from every phase. Nothing else leaves `finishing`.
    void reset();

    bool operator==(const HoldToTalkState &) const = default;

private:
    Phase phase_ = Phase::idle;
};

/// Follows the physical key and lets only real changes through: repeats and stray releases stop
/// here.
class ShortcutKeyState {
public:
    bool isDown() const { return isDown_; }

    /// True when `down` differs from the state so far, which it then becomes.
    bool transition(bool down);

private:
    bool isDown_ = false;
};

} // namespace lorvane
