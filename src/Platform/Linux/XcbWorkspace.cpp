#include "Platform/Linux/XcbWorkspace.h"

#include "Platform/Linux/ProcessTable.h"
#include "Platform/Linux/SettingsPage.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QProcess>
#include <QUrl>

#include <xcb/res.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto timeLimit = 150ms;
constexpr uint32_t onAllDesktops = 0xffffffff;
constexpr uint32_t fromPager = 2; // a request of the user, which no window manager holds back

} // namespace

XcbWorkspace::XcbWorkspace()
    : connection_(std::make_unique<X11Connection>(
          [this](const xcb_generic_event_t &event) { handleEvent(event); })) {
    if (connection_->error() != 0)
        return;
    activeWindow_ = connection_->atom("_NET_ACTIVE_WINDOW", QDeadlineTimer(timeLimit));
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK,
                                 &events);
    connection_->flush();
}

XcbWorkspace::~XcbWorkspace() = default;

std::optional<RunningApplication> XcbWorkspace::frontmostApplication() {
    return frontmostApplication(QDeadlineTimer(timeLimit));
}

std::optional<RunningApplication>
XcbWorkspace::frontmostApplication(const QDeadlineTimer &deadline) {
    const xcb_window_t window =
        value(connection_->root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, 0, deadline);
    if (window == 0)
        return std::nullopt;
    const qint64 id = processId(window, deadline);
    if (id <= 0)
        return std::nullopt;
    return RunningApplication{id, window, ProcessTable::startTime(id)};
}

bool XcbWorkspace::isTerminated(const RunningApplication &application) {
    return !ProcessTable::isRunning(application.processId, application.startTime);
}

bool XcbWorkspace::activate(const RunningApplication &application) {
    const QDeadlineTimer deadline(timeLimit);
    if (isTerminated(application) || !hasWindowManager(deadline))
        return false;
    const xcb_window_t window = windowToActivate(application, deadline);
    if (window == 0)
        return false;

    // Activation alone doesn't take the user to another desktop.
    const uint32_t desktop =
        value(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, onAllDesktops, deadline);
    const uint32_t current = value(connection_->root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL,
                                   onAllDesktops, deadline);
    if (desktop != onAllDesktops && current != onAllDesktops && desktop != current) {
        send(connection_->root(), connection_->atom("_NET_CURRENT_DESKTOP", deadline), desktop,
             XCB_CURRENT_TIME);
    }
    send(window, activeWindow_, fromPager, XCB_CURRENT_TIME);
    return connection_->flush();
}

void XcbWorkspace::observeActivation(Activated activated) {
    observers_.push_back(std::move(activated));
}

void XcbWorkspace::openAddress(const QString &address) {
    const QString scheme = QUrl(address).scheme();
    QStringList command;
    if (scheme == u"http" || scheme == u"https" || scheme == u"mailto" || scheme == u"file")
        command = {QStringLiteral("xdg-open"), address};
    else
        command = settingsPageCommand(address, qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (!command.isEmpty())
        QProcess::startDetached(command.takeFirst(), command);
}

void XcbWorkspace::showFile(const QString &path) {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("/org/freedesktop/FileManager1"),
                                               QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << QString();
    QDBusConnection::sessionBus().asyncCall(call);
}

void XcbWorkspace::handleEvent(const xcb_generic_event_t &event) {
    if (event.response_type != XCB_PROPERTY_NOTIFY || observers_.empty())
        return;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    if (change.window != connection_->root() || change.atom != activeWindow_)
        return;
    // Between two windows there is often none for a millisecond.
    const auto application = frontmostApplication();
    if (!application || application == lastActivated_)
        return;
    lastActivated_ = application;
    const auto observers = observers_;
    for (const Activated &observer : observers)
        observer(*application);
}

/// The 32-bit values of a window's property, empty if it is missing or of another type; none if
/// there is no such window.
std::optional<std::vector<uint32_t>> XcbWorkspace::property(xcb_window_t window, const char *name,
                                                            xcb_atom_t type,
                                                            const QDeadlineTimer &deadline) {
    constexpr uint32_t mostValues = 4096;
    if (connection_->error() != 0)
        return std::nullopt;
    const xcb_atom_t atom = connection_->atom(name, deadline);
    const auto answer = connection_->reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_->get(), false, window, atom, type, 0, mostValues), deadline);
    if (!answer)
        return std::nullopt;
    if (answer->type != type || answer->format != 32)
        return std::vector<uint32_t>();
    const auto *const values = static_cast<const uint32_t *>(xcb_get_property_value(answer.get()));
    return std::vector(values, values + answer->value_len);
}

uint32_t XcbWorkspace::value(xcb_window_t window, const char *name, xcb_atom_t type,
                             uint32_t absent, const QDeadlineTimer &deadline) {
    const auto values = property(window, name, type, deadline);
    return values && !values->empty() ? values->front() : absent;
}

/// The process of a window: what it says of itself, or else who is connected to the server.
qint64 XcbWorkspace::processId(xcb_window_t window, const QDeadlineTimer &deadline) {
    const auto stated = property(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, deadline);
    // The server tells the client also of a window that is gone.
    if (!stated)
        return 0;
    if (!stated->empty() && stated->front() != 0)
        return stated->front();
    const auto *const extension = xcb_get_extension_data(connection_->get(), &xcb_res_id);
    if (!extension || !extension->present)
        return 0;
    const xcb_res_client_id_spec_t question = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto answer = connection_->reply<xcb_res_query_client_ids_reply_t>(
        xcb_res_query_client_ids(connection_->get(), 1, &question), deadline);
    if (!answer)
        return 0;
    for (auto id = xcb_res_query_client_ids_ids_iterator(answer.get()); id.rem > 0;
         xcb_res_client_id_value_next(&id)) {
        if (id.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(id.data) > 0)
            return *xcb_res_client_id_value_value(id.data);
    }
    return 0;
}

/// A window manager that has gone leaves its properties on the root, but not its own window.
bool XcbWorkspace::hasWindowManager(const QDeadlineTimer &deadline) {
    const char *const name = "_NET_SUPPORTING_WM_CHECK";
    const xcb_window_t window = value(connection_->root(), name, XCB_ATOM_WINDOW, 0, deadline);
    return window != 0 && value(window, name, XCB_ATOM_WINDOW, 0, deadline) == window;
}

/// The remembered window if it is still there, or else the upper one of the application's; 0 if it
/// has none.
xcb_window_t XcbWorkspace::windowToActivate(const RunningApplication &application,
                                            const QDeadlineTimer &deadline) {
    auto stacking =
        property(connection_->root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, deadline);
    if (!stacking || stacking->empty())
        stacking = property(connection_->root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, deadline);
    auto windows = stacking.value_or(std::vector<uint32_t>());
    std::reverse(windows.begin(), windows.end());
    const auto remembered =
        std::find(windows.begin(), windows.end(), static_cast<xcb_window_t>(application.window));
    if (remembered != windows.end())
        std::rotate(windows.begin(), remembered, remembered + 1);
    for (const xcb_window_t window : windows) {
        if (processId(window, deadline) == application.processId)
            return window;
    }
    return 0;
}

/// Asks the window manager for something, as EWMH has it: by a message to the root window.
void XcbWorkspace::send(xcb_window_t window, xcb_atom_t message, uint32_t first, uint32_t second) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = message;
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    xcb_send_event(connection_->get(), false, connection_->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
}

} // namespace lorvane
