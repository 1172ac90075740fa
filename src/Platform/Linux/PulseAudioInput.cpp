#include "Platform/Linux/PulseAudioInput.h"

#include "Core/LocalizedError.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lorvane {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr auto answerLimit = 500ms;
constexpr auto tailLimit = 150ms;
constexpr qsizetype bufferFrames = 2048;
/// How often the server is to deliver. Short, so that little is on its way when a recording stops.
constexpr auto deliveryInterval = 20ms;

/// The words of a dictation that finds no format: a microphone may go just after it was found.
QString noMicrophone() {
    return QStringLiteral("No microphone input is available. "
                          "Check your audio input in System Settings.");
}

QString reasonOf(int error) {
    switch (error) {
    case PA_ERR_NOENTITY: return noMicrophone();
    case PA_ERR_KILLED: return QStringLiteral("The microphone was disconnected.");
    case PA_ERR_CONNECTIONTERMINATED: return QStringLiteral("The sound server has ended.");
    default:
        return QStringLiteral("The microphone was lost: %1.")
            .arg(QString::fromUtf8(pa_strerror(error)));
    }
}

} // namespace

/// One recording, from `start` to `stop`. What the audio thread works on is guarded by the lock of
/// the connection.
struct PulseAudioInput::Recording {
    PulseAudioInput &owner;
    const AudioFormat format;
    const Tap tap;
    const Ended ended;
    const SteadyClock::time_point deadline; // for the server to have it running
    pa_stream *stream = nullptr;
    pa_operation *timing = nullptr; // the question how much is on its way
    std::weak_ptr<Recording> self;
    bool isLost = false;
    bool isTimed = false;     // `timing` is answered
    bool isFinishing = false; // main thread only
    bool isOver = false;      // written on the main thread only; then `owner` may be gone

    std::vector<float> buffer = std::vector<float>(size_t(bufferFrames * format.channelCount));
    qsizetype filled = 0; // frames in the buffer
    qint64 received = 0;  // frames in all
    SteadyClock::time_point lastArrival{};

    /// Collects the source's pieces, which are of any size, to whole buffers. No samples are
    /// silence.
    void append(const float *samples, qsizetype frameCount) {
        received += frameCount;
        while (frameCount > 0) {
            const qsizetype count = std::min(frameCount, bufferFrames - filled);
            const qsizetype sampleCount = count * format.channelCount;
            float *end = buffer.data() + filled * format.channelCount;
            if (samples) {
                std::copy_n(samples, sampleCount, end);
                samples += sampleCount;
            } else {
                std::fill_n(end, sampleCount, 0.0F);
            }
            filled += count;
            frameCount -= count;
            if (filled == bufferFrames)
                deliver();
        }
    }

    void deliver() {
        if (filled > 0)
            tap({buffer.data(), std::exchange(filled, 0), format.channelCount});
    }
};

PulseAudioInput::PulseAudioInput(Clock &clock) : clock_(clock), connection_(clock) {}

PulseAudioInput::~PulseAudioInput() { release(); }

Async<AudioFormat> PulseAudioInput::format() {
    const bool isReached = co_await connection_.reach(SteadyClock::now() + answerLimit);
    const PulseConnection::Lock lock(connection_);
    if (!isReached || !connection_.defaultSource())
        co_return AudioFormat();
    const pa_sample_spec &spec = connection_.defaultSource()->spec;
    co_return AudioFormat{double(spec.rate), spec.channels};
}

Async<> PulseAudioInput::start(AudioFormat format, Tap tap, Ended ended) {
    release();
    const auto recording = std::make_shared<Recording>(Recording{*this,
                                                                 format,
                                                                 std::move(tap),
                                                                 std::move(ended),
                                                                 SteadyClock::now() + answerLimit,
                                                                 nullptr,
                                                                 nullptr,
                                                                 {}});
    recording->self = recording;
    recording_ = recording;
    try {
        co_await open(recording);
    } catch (const LocalizedError &) {
        if (recording->isOver)
            co_return;
        release();
        throw;
    }
}

/// Returns when the server has it running, or it is over.
Async<> PulseAudioInput::open(std::shared_ptr<Recording> recording) {
    const bool isReached = co_await connection_.reach(recording->deadline);
    if (recording->isOver)
        co_return;
    {
        const PulseConnection::Lock lock(connection_);
        if (!isReached)
            throw LocalizedError(connection_.error());
        connectStream(recording);
    }
    // What waits holds no share: the audio thread may be the last to let go of it.
    const PulseConnection::Condition isSettled = [recording = recording.get()] {
        if (recording->isOver)
            return true;
        const pa_stream_state_t state = pa_stream_get_state(recording->stream);
        return state == PA_STREAM_READY || !PA_STREAM_IS_GOOD(state);
    };
    co_await connection_.waitUntil(recording->deadline, isSettled);
    if (recording->isOver)
        co_return;
    const PulseConnection::Lock lock(connection_);
    if (recording->isLost)
        throw LocalizedError(reasonOf(pa_context_errno(connection_.context())));
    if (pa_stream_get_state(recording->stream) != PA_STREAM_READY)
        throw LocalizedError(connection_.error());
}

/// The lock is held.
void PulseAudioInput::connectStream(const std::shared_ptr<Recording> &recording) {
    if (!connection_.defaultSource())
        throw LocalizedError(noMicrophone());
    const PulseConnection::Source &source = *connection_.defaultSource();
    const AudioFormat &format = recording->format;
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, uint32_t(std::lround(format.sampleRate)),
                              uint8_t(format.channelCount)};
    const bool isNative = spec.channels == source.map.channels;
    pa_stream *stream =
        pa_stream_new(connection_.context(), "Dictation", &spec, isNative ? &source.map : nullptr);
    if (!stream)
        throw LocalizedError(QStringLiteral("The audio format can’t be recorded."));
    recording->stream = stream;
    pa_stream_set_read_callback(stream, readable, recording.get());
    pa_stream_set_state_callback(stream, stateChanged, recording.get());

    pa_buffer_attr attributes{};
    attributes.maxlength = uint32_t(-1);
    attributes.fragsize =
        uint32_t(pa_usec_to_bytes(std::chrono::microseconds(deliveryInterval).count(), &spec));
    // Without DONT_MOVE a stream whose microphone goes moves on to what the loudspeakers play.
    const auto flags = pa_stream_flags_t(PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY);
    pa_stream_connect_record(stream, source.name.constData(), &attributes, flags);
}

Async<> PulseAudioInput::finish() {
    const auto recording = recording_;
    if (!recording)
        co_return;
    recording->isFinishing = true;
    co_await awaitTail(recording);
    if (!recording->isOver)
        stop();
}

void PulseAudioInput::stop() {
    if (!recording_)
        return;
    {
        const PulseConnection::Lock lock(connection_);
        recording_->deliver();
    }
    release();
}

/// Waits until everything heard before the call has arrived.
Async<> PulseAudioInput::awaitTail(std::shared_ptr<Recording> recording) {
    const auto stopped = SteadyClock::now();
    const auto deadline = stopped + tailLimit;
    qint64 before = 0;
    SteadyClock::duration silence{};
    {
        const PulseConnection::Lock lock(connection_);
        if (recording->isLost || recording->received == 0)
            co_return;
        before = recording->received;
        silence = stopped - recording->lastArrival;
        recording->timing = pa_stream_update_timing_info(recording->stream, timed, recording.get());
        if (!recording->timing)
            co_return;
    }
    const PulseConnection::Condition isAnswered = [recording = recording.get()] {
        return recording->isTimed || recording->isLost || recording->isOver;
    };
    co_await connection_.waitUntil(deadline, isAnswered);
    if (recording->isOver)
        co_return;

    qint64 frames = 0;
    {
        const PulseConnection::Lock lock(connection_);
        pa_usec_t latency = 0;
        int isNegative = 0;
        if (pa_stream_get_latency(recording->stream, &latency, &isNegative) < 0 || isNegative)
            latency = 0;
        const auto missing =
            std::max<SteadyClock::duration>(silence, std::chrono::microseconds(latency));
        frames =
            qint64(std::chrono::duration<double>(missing).count() * recording->format.sampleRate);
    }
    const PulseConnection::Condition hasArrived = [recording = recording.get(), before, frames] {
        return recording->received - before >= frames || recording->isLost || recording->isOver;
    };
    co_await connection_.waitUntil(deadline, hasArrived);
}

/// Ends the recording: once the stream is gone, nothing calls the tap.
void PulseAudioInput::release() {
    if (!recording_)
        return;
    const PulseConnection::Lock lock(connection_);
    const auto recording = std::exchange(recording_, nullptr);
    if (pa_operation *timing = std::exchange(recording->timing, nullptr)) {
        pa_operation_cancel(timing);
        pa_operation_unref(timing);
    }
    if (pa_stream *stream = recording->stream) {
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
    recording->isOver = true;
    connection_.signal();
}

void PulseAudioInput::timed(pa_stream *, int, void *data) {
    auto *recording = static_cast<Recording *>(data);
    recording->isTimed = true;
    recording->owner.connection_.signal();
}

void PulseAudioInput::readable(pa_stream *stream, size_t, void *data) {
    auto *recording = static_cast<Recording *>(data);
    const size_t frameSize = pa_frame_size(pa_stream_get_sample_spec(stream));
    recording->lastArrival = SteadyClock::now();
    while (pa_stream_readable_size(stream) > 0) {
        const void *samples = nullptr;
        size_t byteCount = 0;
        if (pa_stream_peek(stream, &samples, &byteCount) < 0 || byteCount == 0)
            break;
        // A hole in the stream has a length and no samples.
        recording->append(static_cast<const float *>(samples), qsizetype(byteCount / frameSize));
        pa_stream_drop(stream);
    }
    recording->owner.connection_.signal();
}

void PulseAudioInput::stateChanged(pa_stream *stream, void *data) {
    auto *recording = static_cast<Recording *>(data);
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream)) || recording->isLost) {
        recording->owner.connection_.signal();
        return;
    }
    recording->isLost = true;
    recording->deliver();
    recording->owner.connection_.signal();
    const QString reason = reasonOf(pa_context_errno(pa_stream_get_context(stream)));
    PulseAudioInput &owner = recording->owner;
    owner.clock_.post([&owner, weak = recording->self, reason] {
        const auto lost = weak.lock();
        if (!lost || lost != owner.recording_ || lost->isFinishing)
            return;
        owner.release();
        lost->ended(reason);
    });
}

} // namespace lorvane
