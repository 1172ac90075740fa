#include "Views/Overlay/Compositor.h"

#include <QGuiApplication>

#if QT_CONFIG(xcb)
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>
#endif

namespace lorvane {

bool isCompositorRunning() {
#if QT_CONFIG(xcb)
    // Qt's offscreen platform has the interface too, without a connection behind it.
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || QGuiApplication::platformName() != u"xcb")
        return true;
    // The convention of EWMH: a compositor owns this selection, here that of the first screen.
    constexpr std::string_view selection = "_NET_WM_CM_S0";
    xcb_connection_t *connection = x11->connection();
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(connection,
                              xcb_intern_atom(connection, true, selection.size(), selection.data()),
                              nullptr),
        &std::free);
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom),
                                      nullptr),
        &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
#else
    return true;
#endif
}

} // namespace lorvane
