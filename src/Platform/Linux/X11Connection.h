#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace lorvane {

struct XcbFree {
    void operator()(void *memory) const { std::free(memory); }
};
/// Owns what xcb has allocated.
template <class T>
using XcbPtr = std::unique_ptr<T, XcbFree>;

/// A connection of its own to the display that DISPLAY names. Main thread only.
class X11Connection {
public:
    /// Called on the main thread, from the event loop. It may destroy the connection.
    using EventHandler = std::function<void(const xcb_generic_event_t &)>;

    explicit X11Connection(EventHandler handler = {});
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;
    ~X11Connection();

    /// 0, or xcb's number (XCB_CONN_...) of what is wrong: no display, or the server has gone.
    int error() const { return xcb_connection_has_error(connection_); }
    xcb_connection_t *get() const { return connection_; }
    /// The root of the display's own screen; 0 without a display.
    xcb_window_t root() const { return root_; }

    /// Waits for the answer to a request until the deadline; null if it fails or is too late. xcb's
    /// own functions would wait for ever when the server is stopped or grabbed.
    template <class Reply, class Cookie>
    XcbPtr<Reply> reply(Cookie cookie, const QDeadlineTimer &deadline) {
        return XcbPtr<Reply>(static_cast<Reply *>(waitForReply(cookie.sequence, deadline)));
    }
    /// Sends everything; false if there is no server any more.
    bool flush();
    /// Sends everything and waits until the server has worked on it; false if it is too late.
    bool synchronize(const QDeadlineTimer &deadline);
    /// Sends everything, and calls `then` from the event loop when the server has worked on it: the
    /// answers to all requests up to here have come by then, and the events before them have been
    /// delivered. Never called if the server goes first. `then` may destroy the connection.
    void whenSynchronized(std::function<void()> then);
    /// Hands the events that have come to the handler at once, not only from the event loop.
    void deliverEvents();
    /// The server's number of a name, which is remembered; 0 if it doesn't answer.
    xcb_atom_t atom(const char *name, const QDeadlineTimer &deadline);

private:
    /// A request whose answer tells that the server has come so far.
    struct Mark {
        unsigned int sequence = 0;
        std::function<void()> then;
    };

    void *waitForReply(unsigned int sequence, const QDeadlineTimer &deadline);
    bool readEvent();
    std::function<void()> takeReachedMark();
    void postDelivery();

    xcb_connection_t *connection_;
    xcb_window_t root_ = 0;
    EventHandler handler_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::shared_ptr<QObject> context_; ///< gone when this is
    QHash<QByteArray, xcb_atom_t> atoms_;
    std::deque<XcbPtr<xcb_generic_event_t>> events_; ///< read, but not delivered yet
    std::deque<Mark> marks_;
    bool deliveryPosted_ = false;
};

} // namespace lorvane
