#include "Platform/Linux/PulseConnection.h"

#include <new>

namespace lorvane {
namespace {

void forget(pa_operation *operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

PulseConnection::PulseConnection() : mainloop_(pa_threaded_mainloop_new()) {
    if (!mainloop_ || pa_threaded_mainloop_start(mainloop_) < 0)
        throw std::bad_alloc();
    const Lock lock(*this);
    connect();
}

PulseConnection::~PulseConnection() {
    {
        const Lock lock(*this);
        disconnect();
    }
    pa_threaded_mainloop_stop(mainloop_);
    pa_threaded_mainloop_free(mainloop_);
}

bool PulseConnection::reach(std::chrono::steady_clock::time_point deadline) {
    if (!isGood())
        connect();
    waitUntil(deadline, [this] { return isSourceKnown_ || !isGood(); });
    return isSourceKnown_ && isGood();
}

bool PulseConnection::waitUntil(std::chrono::steady_clock::time_point deadline,
                                const std::function<bool()> &condition) {
    struct Limit {
        pa_threaded_mainloop *mainloop;
        bool isOver;
    } limit{mainloop_, false};
    const auto over = [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        auto *reached = static_cast<Limit *>(data);
        reached->isOver = true;
        pa_threaded_mainloop_signal(reached->mainloop, 0);
    };
    const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(
        deadline - std::chrono::steady_clock::now());
    if (condition())
        return true;
    if (wait.count() <= 0)
        return false;
    pa_time_event *timer =
        pa_context_rttime_new(context_, pa_rtclock_now() + pa_usec_t(wait.count()), over, &limit);
    while (!condition() && !limit.isOver)
        pa_threaded_mainloop_wait(mainloop_);
    pa_threaded_mainloop_get_api(mainloop_)->time_free(timer);
    return condition();
}

QString PulseConnection::error() const {
    if (isGood())
        return QStringLiteral("The sound server doesn’t answer.");
    return QStringLiteral("The sound server can’t be reached: %1.")
        .arg(QString::fromUtf8(pa_strerror(pa_context_errno(context_))));
}

void PulseConnection::connect() {
    disconnect();
    context_ = pa_context_new(pa_threaded_mainloop_get_api(mainloop_), "Lorvane");
    if (!context_)
        throw std::bad_alloc();
    pa_context_set_state_callback(context_, stateChanged, this);
    pa_context_set_subscribe_callback(context_, changed, this);
    // Starting a server would hold the caller up. Where one is wanted, the session starts it.
    pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void PulseConnection::disconnect() {
    if (context_) {
        pa_context_set_state_callback(context_, nullptr, nullptr);
        pa_context_set_subscribe_callback(context_, nullptr, nullptr);
        pa_context_disconnect(context_);
        pa_context_unref(context_);
        context_ = nullptr;
    }
    source_.reset();
    isSourceKnown_ = false;
}

void PulseConnection::query() { forget(pa_context_get_server_info(context_, gotServer, this)); }

void PulseConnection::stateChanged(pa_context *context, void *self) {
    auto *connection = static_cast<PulseConnection *>(self);
    switch (pa_context_get_state(context)) {
    case PA_CONTEXT_READY:
        forget(pa_context_subscribe(
            context,
            pa_subscription_mask_t(PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SOURCE),
            nullptr, nullptr));
        connection->query();
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        connection->source_.reset();
        connection->isSourceKnown_ = false;
        connection->signal();
        break;
    default: break;
    }
}

void PulseConnection::changed(pa_context *, pa_subscription_event_type_t, uint32_t, void *self) {
    static_cast<PulseConnection *>(self)->query();
}

void PulseConnection::gotServer(pa_context *context, const pa_server_info *info, void *self) {
    auto *connection = static_cast<PulseConnection *>(self);
    connection->incoming_.reset();
    if (info && info->default_source_name)
        forget(pa_context_get_source_info_by_name(context, info->default_source_name, gotSource,
                                                  self));
    else
        gotSource(context, nullptr, 1, self);
}

void PulseConnection::gotSource(pa_context *, const pa_source_info *info, int end, void *self) {
    auto *connection = static_cast<PulseConnection *>(self);
    if (end == 0) {
        if (info->monitor_of_sink == PA_INVALID_INDEX)
            connection->incoming_ = Source{info->name, info->sample_spec, info->channel_map};
        return;
    }
    connection->source_ = std::exchange(connection->incoming_, std::nullopt);
    connection->isSourceKnown_ = true;
    connection->signal();
}

} // namespace lorvane
