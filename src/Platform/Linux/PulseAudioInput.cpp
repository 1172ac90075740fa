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

QString reasonOf(int error) {
    switch (error) {
    case PA_ERR_NOENTITY: return QStringLiteral("There is no microphone.");
    case PA_ERR_KILLED: return QStringLiteral("The microphone was disconnected.");
    case PA_ERR_CONNECTIONTERMINATED: return QStringLiteral("The sound server has ended.");
    default:
        return QStringLiteral("The microphone was lost: %1.")
            .arg(QString::fromUtf8(pa_strerror(error)));
    }
}

} // namespace

/// What the audio thread works on; guarded by the lock of the connection.
struct PulseAudioInput::Recording {
    PulseAudioInput &owner;
    const AudioFormat format;
    const Tap tap;
    const Ended ended;
    pa_stream *stream = nullptr;
    std::weak_ptr<Recording> self;
    bool isLost = false;

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

PulseAudioInput::PulseAudioInput(Clock &clock) : clock_(clock) {}

PulseAudioInput::~PulseAudioInput() { release(); }

AudioFormat PulseAudioInput::format() {
    const PulseConnection::Lock lock(connection_);
    if (!connection_.reach(SteadyClock::now() + answerLimit) || !connection_.defaultSource())
        return {};
    const pa_sample_spec &spec = connection_.defaultSource()->spec;
    return {double(spec.rate), spec.channels};
}

void PulseAudioInput::start(const AudioFormat &format, Tap tap, Ended ended) {
    release();
    const auto deadline = SteadyClock::now() + answerLimit;
    {
        const PulseConnection::Lock lock(connection_);
        if (!connection_.reach(deadline))
            throw LocalizedError(connection_.error());
        if (!connection_.defaultSource())
            throw LocalizedError(QStringLiteral("There is no microphone."));
        const PulseConnection::Source &source = *connection_.defaultSource();

        const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, uint32_t(std::lround(format.sampleRate)),
                                  uint8_t(format.channelCount)};
        const bool isNative = spec.channels == source.map.channels;
        pa_stream *stream = pa_stream_new(connection_.context(), "Dictation", &spec,
                                          isNative ? &source.map : nullptr);
        if (!stream)
            throw LocalizedError(QStringLiteral("The audio format can’t be recorded."));

        recording_ = std::make_shared<Recording>(
            Recording{*this, format, std::move(tap), std::move(ended), stream, {}});
        recording_->self = recording_;
        pa_stream_set_read_callback(stream, readable, recording_.get());
        pa_stream_set_state_callback(stream, stateChanged, recording_.get());

        pa_buffer_attr attributes{};
        attributes.maxlength = uint32_t(-1);
        attributes.fragsize =
            uint32_t(pa_usec_to_bytes(std::chrono::microseconds(deliveryInterval).count(), &spec));
        // Without DONT_MOVE a stream whose microphone goes moves on to what the loudspeakers play.
        const auto flags = pa_stream_flags_t(PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY);
        pa_stream_connect_record(stream, source.name.constData(), &attributes, flags);
        connection_.waitUntil(deadline, [stream] {
            const pa_stream_state_t state = pa_stream_get_state(stream);
            return state == PA_STREAM_READY || !PA_STREAM_IS_GOOD(state);
        });
        if (pa_stream_get_state(stream) == PA_STREAM_READY)
            return;
    }
    const QString error = [this] {
        const PulseConnection::Lock lock(connection_);
        return recording_->isLost ? reasonOf(pa_context_errno(connection_.context()))
                                  : connection_.error();
    }();
    release();
    throw LocalizedError(error);
}

void PulseAudioInput::stop() {
    if (!recording_)
        return;
    {
        const PulseConnection::Lock lock(connection_);
        awaitTail();
        recording_->deliver();
    }
    release();
}

/// Waits until everything heard before the call has arrived. The lock is held.
void PulseAudioInput::awaitTail() {
    const auto stopped = SteadyClock::now();
    const auto deadline = stopped + tailLimit;
    Recording &recording = *recording_;
    if (recording.isLost || recording.received == 0)
        return;

    struct Answer {
        PulseConnection &connection;
        bool isThere;
    } answer{connection_, false};
    const auto answered = [](pa_stream *, int, void *data) {
        auto *reply = static_cast<Answer *>(data);
        reply->isThere = true;
        reply->connection.signal();
    };
    const qint64 before = recording.received;
    const auto silence = stopped - recording.lastArrival;
    pa_operation *question = pa_stream_update_timing_info(recording.stream, answered, &answer);
    if (!question)
        return;
    connection_.waitUntil(deadline, [&] { return answer.isThere || recording.isLost; });
    pa_operation_cancel(question);
    pa_operation_unref(question);

    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(recording.stream, &latency, &isNegative) < 0 || isNegative)
        latency = 0;
    const auto missing =
        std::max<SteadyClock::duration>(silence, std::chrono::microseconds(latency));
    const auto frames =
        qint64(std::chrono::duration<double>(missing).count() * recording.format.sampleRate);
    connection_.waitUntil(
        deadline, [&] { return recording.received - before >= frames || recording.isLost; });
}

/// Ends the recording: once the stream is gone, nothing calls the tap.
void PulseAudioInput::release() {
    if (!recording_)
        return;
    const PulseConnection::Lock lock(connection_);
    pa_stream *stream = recording_->stream;
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
    recording_.reset();
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
    recording->owner.connection_.signal();
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream)) || recording->isLost)
        return;
    recording->isLost = true;
    recording->deliver();
    const QString reason = reasonOf(pa_context_errno(pa_stream_get_context(stream)));
    PulseAudioInput &owner = recording->owner;
    owner.clock_.post([&owner, weak = recording->self, reason] {
        const auto lost = weak.lock();
        if (!lost || lost != owner.recording_)
            return;
        owner.release();
        lost->ended(reason);
    });
}

} // namespace lorvane
