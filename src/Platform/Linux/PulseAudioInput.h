#pragma once

#include "Platform/AudioInput.h"
#include "Platform/Clock.h"
#include "Platform/Linux/PulseConnection.h"

#include <memory>

namespace lorvane {

/// The default source of PulseAudio or PipeWire. The tap is called on libpulse's thread,
/// but for its last, short buffer, which `stop` delivers itself.
///
/// `finish` waits for what the microphone has heard until then, which takes about as long as one
/// delivery of the source and never more than 150 milliseconds.
class PulseAudioInput final : public AudioInput {
public:
    /// Begins to connect to the sound server and doesn't wait for it. `clock` brings the end of a
    /// source to the main thread.
    explicit PulseAudioInput(Clock &clock);
    ~PulseAudioInput() override;

    Async<AudioFormat> format() override;
    Async<> start(AudioFormat format, Tap tap, Ended ended) override;
    Async<> finish() override;
    void stop() override;

private:
    struct Recording;

    Async<> open(std::shared_ptr<Recording> recording);
    void connectStream(const std::shared_ptr<Recording> &recording);
    Async<> awaitTail(std::shared_ptr<Recording> recording);
    void release();
    static void timed(pa_stream *stream, int success, void *recording);
    static void readable(pa_stream *stream, size_t byteCount, void *recording);
    static void stateChanged(pa_stream *stream, void *recording);

    Clock &clock_;
    PulseConnection connection_;
    std::shared_ptr<Recording> recording_;
};

} // namespace lorvane
