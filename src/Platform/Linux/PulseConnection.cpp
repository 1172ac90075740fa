#include "Platform/Linux/PulseConnection.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace lorvane {
namespace {

void forget(pa_operation *operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

PulseConnection::PulseConnection(Clock &clock)
    : clock_(clock), mainloop_(pa_threaded_mainloop_new()) {
    if (!mainloop_ || pa_threaded_mainloop_start(mainloop_) < 0)
        throw std::bad_alloc();
    const Lock lock(*this);
    connect();
}

PulseConnection::~PulseConnection() {
    {
        const Lock lock(*this);
        disconnect();
        for (const Wait &wait : waits_)
            pa_threaded_mainloop_get_api(mainloop_)->time_free(wait.limit);
        waits_.clear();
    }
    pa_threaded_mainloop_stop(mainloop_);
    pa_threaded_mainloop_free(mainloop_);
}

Async<bool> PulseConnection::reach(TimePoint deadline) {
    {
        const Lock lock(*this);
        if (!isGood())
            connect();
    }
    const Condition isKnown = [this] { return isSourceKnown_ || !isGood(); };
    co_await waitUntil(deadline, isKnown);
    const Lock lock(*this);
    co_return isSourceKnown_ &&isGood();
}

Async<bool> PulseConnection::waitUntil(TimePoint deadline, Condition condition) {
    {
        const Lock lock(*this);
        if (condition())
            co_return true;
    }
    const auto wait = [&](const Continuation<bool> &waiter) {
        const Lock lock(*this);
        addWait(deadline, condition, waiter);
    };
    co_return co_await suspend<bool>(clock_, wait);
}

void PulseConnection::addWait(TimePoint deadline, const Condition &condition,
                              const Continuation<bool> &waiter) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
        deadline - std::chrono::steady_clock::now());
    // It may have come to hold while nobody had the lock.
    if (condition() || left.count() <= 0) {
        waiter.resume(condition());
        return;
    }
    Wait &wait = waits_.emplace_back(Wait{condition, waiter, nullptr});
    wait.limit = pa_context_rttime_new(context_, pa_rtclock_now() + pa_usec_t(left.count()),
                                       limitReached, this);
}

void PulseConnection::signal() {
    for (auto wait = waits_.begin(); wait != waits_.end();)
        wait = wait->condition() ? end(wait, true) : std::next(wait);
}

void PulseConnection::limitReached(pa_mainloop_api *, pa_time_event *limit, const timeval *,
                                   void *self) {
    auto &connection = *static_cast<PulseConnection *>(self);
    const auto wait = std::find_if(connection.waits_.begin(), connection.waits_.end(),
                                   [limit](const Wait &waiting) { return waiting.limit == limit; });
    connection.end(wait, wait->condition());
}

std::list<PulseConnection::Wait>::iterator PulseConnection::end(std::list<Wait>::iterator wait,
                                                                bool holds) {
    pa_threaded_mainloop_get_api(mainloop_)->time_free(wait->limit);
    wait->waiter.resume(holds);
    return waits_.erase(wait);
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
