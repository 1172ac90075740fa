#pragma once

#include "Platform/Task.h"

#include <pulse/pulseaudio.h>

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <list>
#include <optional>

namespace lorvane {

/// The connection to the sound server, PulseAudio or PipeWire, on libpulse's own thread. It knows
/// the default source and keeps that knowledge fresh. What libpulse's thread calls back has its
/// Lock, and so must everything here but making, destroying and waiting; nobody holds it for long.
class PulseConnection {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// Looked at with the Lock, by either thread. Must not throw.
    using Condition = std::function<bool()>;

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

    /// Begins to connect and doesn't wait for it. `clock` resumes what waits.
    explicit PulseConnection(Clock &clock);
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;
    /// What waits is never resumed then.
    ~PulseConnection();

    /// Connects, again if need be, and waits for what the server says of the default source. False
    /// when that isn't known in time; `error` says why. Main thread, without the Lock.
    Async<bool> reach(TimePoint deadline);

    /// The default source, as far as it is a microphone: the sound of a loudspeaker is none.
    const std::optional<Source> &defaultSource() const { return source_; }

    /// Valid after `reach`.
    pa_context *context() const { return context_; }

    /// Waits until the condition holds; false when it doesn't in time. It is looked at now, and
    /// again after each `signal`. Main thread, without the Lock.
    Async<bool> waitUntil(TimePoint deadline, Condition condition);
    /// Allocates nothing unless somebody's wait is over.
    void signal();

    /// What went wrong last, in words fit to show.
    QString error() const;

private:
    struct Wait {
        Condition condition;
        Continuation<bool> waiter;
        pa_time_event *limit;
    };
    void addWait(TimePoint deadline, const Condition &condition, const Continuation<bool> &waiter);
    std::list<Wait>::iterator end(std::list<Wait>::iterator wait, bool holds);
    static void limitReached(pa_mainloop_api *api, pa_time_event *limit, const timeval *time,
                             void *self);

    void connect();
    void disconnect();
    void query();
    bool isGood() const { return context_ && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_)); }

    static void stateChanged(pa_context *context, void *self);
    static void changed(pa_context *context, pa_subscription_event_type_t type, uint32_t index,
                        void *self);
    static void gotServer(pa_context *context, const pa_server_info *info, void *self);
    static void gotSource(pa_context *context, const pa_source_info *info, int end, void *self);

    Clock &clock_;
    pa_threaded_mainloop *mainloop_;
    std::list<Wait> waits_;
    pa_context *context_ = nullptr;
    std::optional<Source> source_;
    std::optional<Source> incoming_;
    bool isSourceKnown_ = false;
};

} // namespace lorvane
