#include "Platform/Linux/X11Connection.h"

#include <QSocketNotifier>

#include <poll.h>
#include <xcb/xcbext.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace lorvane {

X11Connection::X11Connection(EventHandler handler)
    : connection_(nullptr), handler_(std::move(handler)), context_(std::make_shared<QObject>()) {
    int screenNumber = 0;
    connection_ = xcb_connect(nullptr, &screenNumber);
    if (error() != 0)
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                  QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, context_.get(),
                     [this] { deliverEvents(); });
}

X11Connection::~X11Connection() {
    notifier_.reset();
    xcb_disconnect(connection_);
}

void *X11Connection::waitForReply(unsigned int sequence, const QDeadlineTimer &deadline) {
    xcb_flush(connection_);
    void *reply = nullptr;
    xcb_generic_error_t *failure = nullptr;
    while (xcb_poll_for_reply(connection_, sequence, &reply, &failure) == 0) {
        // Reading an event is what makes xcb look at the socket at all.
        if (readEvent())
            continue;
        if (xcb_poll_for_reply(connection_, sequence, &reply, &failure) != 0)
            break;
        const int wait = deadline.isForever() ? -1 : static_cast<int>(deadline.remainingTime());
        pollfd descriptor = {xcb_get_file_descriptor(connection_), POLLIN, 0};
        const int ready = wait == 0 ? 0 : ::poll(&descriptor, 1, wait);
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            xcb_discard_reply(connection_, sequence);
            break;
        }
    }
    std::free(failure);
    postDelivery();
    return reply;
}

bool X11Connection::flush() {
    const bool sent = xcb_flush(connection_) > 0;
    postDelivery();
    return sent;
}

/// xcb reads events while it waits, and also while it writes: the notifier doesn't wake for those.
void X11Connection::postDelivery() {
    XcbPtr<xcb_generic_event_t> event(xcb_poll_for_queued_event(connection_));
    if (event)
        events_.push_back(std::move(event));
    if ((!events_.empty() || !marks_.empty()) && !std::exchange(deliveryPosted_, true)) {
        QMetaObject::invokeMethod(
            context_.get(), [this] { deliverEvents(); }, Qt::QueuedConnection);
    }
}

bool X11Connection::readEvent() {
    XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection_));
    if (!event)
        return false;
    events_.push_back(std::move(event));
    return true;
}

bool X11Connection::synchronize(const QDeadlineTimer &deadline) {
    return reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection_), deadline) !=
           nullptr;
}

void X11Connection::whenSynchronized(std::function<void()> then) {
    marks_.push_back({xcb_get_input_focus(connection_).sequence, std::move(then)});
    flush();
}

/// What is to be done at the next mark if the server has come so far, else nothing.
std::function<void()> X11Connection::takeReachedMark() {
    void *reply = nullptr;
    xcb_generic_error_t *failure = nullptr;
    if (marks_.empty() ||
        xcb_poll_for_reply(connection_, marks_.front().sequence, &reply, &failure) == 0 || !reply)
        return {};
    std::free(reply);
    auto then = std::move(marks_.front().then);
    marks_.pop_front();
    return then;
}

xcb_atom_t X11Connection::atom(const char *name, const QDeadlineTimer &deadline) {
    const QByteArray key = QByteArray::fromRawData(name, static_cast<qsizetype>(std::strlen(name)));
    const auto known = atoms_.constFind(key);
    if (known != atoms_.constEnd())
        return *known;
    const auto answer = reply<xcb_intern_atom_reply_t>(
        xcb_intern_atom(connection_, false, static_cast<uint16_t>(key.size()), name), deadline);
    if (!answer)
        return XCB_ATOM_NONE;
    atoms_.insert(QByteArray(name), answer->atom);
    return answer->atom;
}

void X11Connection::deliverEvents() {
    deliveryPosted_ = false;
    const std::weak_ptr<QObject> alive = context_;
    while (!events_.empty() || readEvent()) {
        const XcbPtr<xcb_generic_event_t> event = std::move(events_.front());
        events_.pop_front();
        if (handler_)
            handler_(*event);
        if (alive.expired())
            return;
    }
    while (const auto then = takeReachedMark()) {
        then();
        if (alive.expired())
            return;
    }
    // The descriptor of a broken connection would be ready for ever.
    if (notifier_ && error() != 0)
        notifier_->setEnabled(false);
}

} // namespace lorvane
