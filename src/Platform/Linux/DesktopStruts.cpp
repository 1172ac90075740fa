#include "Platform/Linux/DesktopStruts.h"

#include "Platform/Linux/X11Connection.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <vector>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto timeLimit = 100ms;
constexpr uint32_t mostWindows = 4096;

// The values of _NET_WM_STRUT_PARTIAL, as EWMH has them: how deep it reaches from each edge, then
// where it begins and ends along that edge.
enum StrutValue { left, right, top, bottom, alongEdges, strutValueCount = 12 };

void addStruts(QList<QRect> &struts, const uint32_t *values, const QSize &desktop) {
    const auto value = [&](unsigned int i) { return static_cast<int>(values[i]); };
    for (const unsigned int edge : {left, right, top, bottom}) {
        const int depth = value(edge);
        if (depth <= 0)
            continue;
        const int begin = value(alongEdges + 2 * edge);
        const int length = value(alongEdges + 2 * edge + 1) - begin + 1;
        switch (edge) {
        case left: struts.append({0, begin, depth, length}); break;
        case right: struts.append({desktop.width() - depth, begin, depth, length}); break;
        case top: struts.append({begin, 0, length, depth}); break;
        default: struts.append({begin, desktop.height() - depth, length, depth}); break;
        }
    }
}

} // namespace

DesktopStruts::DesktopStruts() : connection_(std::make_unique<X11Connection>()) {}

DesktopStruts::~DesktopStruts() = default;

QList<QRect> DesktopStruts::read() {
    if (connection_->error() != 0)
        return {};
    const QDeadlineTimer deadline(timeLimit);
    xcb_connection_t *const c = connection_->get();
    const auto desktop = connection_->reply<xcb_get_geometry_reply_t>(
        xcb_get_geometry(c, connection_->root()), deadline);
    const auto windows = connection_->reply<xcb_get_property_reply_t>(
        xcb_get_property(c, false, connection_->root(),
                         connection_->atom("_NET_CLIENT_LIST", deadline), XCB_ATOM_WINDOW, 0,
                         mostWindows),
        deadline);
    const xcb_atom_t name = connection_->atom("_NET_WM_STRUT_PARTIAL", deadline);
    if (!desktop || !windows || windows->format != 32)
        return {};

    // All questions are on their way before the first answer is awaited.
    const auto *const ids =
        static_cast<const xcb_window_t *>(xcb_get_property_value(windows.get()));
    std::vector<xcb_get_property_cookie_t> questions;
    for (unsigned int i = 0; i < windows->value_len; ++i) {
        questions.push_back(
            xcb_get_property(c, false, ids[i], name, XCB_ATOM_CARDINAL, 0, strutValueCount));
    }
    QList<QRect> struts;
    for (const auto &question : questions) {
        const auto strut = connection_->reply<xcb_get_property_reply_t>(question, deadline);
        if (strut && strut->format == 32 && strut->value_len == strutValueCount) {
            addStruts(struts, static_cast<const uint32_t *>(xcb_get_property_value(strut.get())),
                      {desktop->width, desktop->height});
        }
    }
    return struts;
}

QRect DesktopStruts::freePart(const QRect &monitor, const QList<QRect> &struts) {
    QRect part = monitor;
    for (const QRect &strut : struts) {
        const QRect taken = strut & monitor;
        if (taken.isEmpty())
            continue;
        // A strut lies along the edge that it takes the least of.
        const std::array depths = {taken.right() - monitor.left(), monitor.right() - taken.left(),
                                   taken.bottom() - monitor.top(), monitor.bottom() - taken.top()};
        switch (std::ranges::min_element(depths) - depths.begin()) {
        case left: part.setLeft(std::max(part.left(), taken.right() + 1)); break;
        case right: part.setRight(std::min(part.right(), taken.left() - 1)); break;
        case top: part.setTop(std::max(part.top(), taken.bottom() + 1)); break;
        default: part.setBottom(std::min(part.bottom(), taken.top() - 1)); break;
        }
    }
    return part.isEmpty() ? monitor : part;
}

} // namespace lorvane
