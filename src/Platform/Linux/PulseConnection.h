#pragma once

#include <pulse/pulseaudio.h>

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace lorvane {

/// The connection to the sound server, PulseAudio or PipeWire, on libpulse's own thread. It knows
/// the default source and keeps that knowledge fresh. Everything but making and destroying it needs
/// a Lock, which libpulse's thread holds too while it calls back.
class PulseConnection {
public:
    struct Source {
        QByteArray name;
        pa_sample_spec spec{};
        pa_channel_map map{};
    };

    class Lock {
    public:
        explicit Lock(PulseConnection &connection) : mainloop_(connection.mainloop_) {
            pa_threaded_mainloop_lock(mainloop_);
        }
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;
        ~Lock() { pa_threaded_mainloop_unlock(mainloop_); }

    private:
        pa_threaded_mainloop *mainloop_;
    };

    /// Begins to connect and doesn't wait for it.
    PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;
    ~PulseConnection();

    /// Connects, again if need be, and waits for what the server says of the default source. False
    /// when that isn't known in time; `error` says why.
    bool reach(std::chrono::steady_clock::time_point deadline);

    /// The default source, as far as it is a microphone: the sound of a loudspeaker is none.
    const std::optional<Source> &defaultSource() const { return source_; }

    /// Valid after `reach`.
    pa_context *context() const { return context_; }

    /// Waits, without the lock, until the condition holds; false when it doesn't in time. It is
    /// looked at again after each `signal`.
    bool waitUntil(std::chrono::steady_clock::time_point deadline,
                   const std::function<bool()> &condition);
    void signal() { pa_threaded_mainloop_signal(mainloop_, 0); }

    /// What went wrong last, in words fit to show.
    QString error() const;

private:
    void connect();
    void disconnect();
    void query();
    bool isGood() const { return context_ && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_)); }

    static void stateChanged(pa_context *context, void *self);
    static void changed(pa_context *context, pa_subscription_event_type_t type, uint32_t index,
                        void *self);
    static void gotServer(pa_context *context, const pa_server_info *info, void *self);
    static void gotSource(pa_context *context, const pa_source_info *info, int end, void *self);

    pa_threaded_mainloop *mainloop_;
    pa_context *context_ = nullptr;
    std::optional<Source> source_;
    std::optional<Source> incoming_;
    bool isSourceKnown_ = false;
};

} // namespace lorvane
