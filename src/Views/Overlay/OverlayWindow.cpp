#include "Views/Overlay/OverlayWindow.h"

#include "Services/RecordingOverlay.h"
#include "Views/Overlay/Compositor.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <QQuickView>
#include <QScreen>

namespace lorvane {

namespace {

constexpr QSize cardSize(350, 88);
constexpr int cornerRadius = 22;

/// Bypassing the window manager puts the window on all workspaces and over full-screen windows,
/// and leaves no frame that would swallow clicks.
constexpr Qt::WindowFlags windowFlags =
    Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
    Qt::WindowTransparentForInput | Qt::X11BypassWindowManagerHint;

} // namespace

OverlayWindow::OverlayWindow(QQmlEngine &engine) : engine_(engine) {
    // No window manager keeps the card above a window that is raised after it.
    staysInFront_.setInterval(250);
    QObject::connect(&staysInFront_, &QTimer::timeout, [this] { view_->raise(); });
}

OverlayWindow::~OverlayWindow() = default;

void OverlayWindow::setMeter(Meter &meter) {
    view_ = std::make_unique<QQuickView>(&engine_, nullptr);
    view_->setTitle(u"Lorvane Recording Indicator"_qs);
    view_->setFlags(windowFlags);
    view_->setColor(Qt::transparent);
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->setInitialProperties({{u"meter"_qs, QVariant::fromValue<QObject *>(&meter)},
                                 {u"cornerRadius"_qs, cornerRadius}});
    view_->setSource(QUrl(u"qrc:/qt/qml/Lorvane/Overlay/Indicator.qml"_qs));
    view_->resize(cardSize);
    view_->create();
    QObject::connect(&meter, &QObject::destroyed, view_.get(), [this] {
        orderOut();
        view_.reset();
    });
}

QSize OverlayWindow::size() const { return cardSize; }

bool OverlayWindow::isVisible() const { return view_ && view_->isVisible(); }

void OverlayWindow::setPosition(const QPoint &position) {
    if (!view_)
        return;
    if (QScreen *screen = QGuiApplication::screenAt(position))
        view_->setScreen(screen);
    view_->setPosition(position);
}

void OverlayWindow::orderFront() {
    if (!view_)
        return;
    cutCorners();
    view_->show();
    view_->raise();
    staysInFront_.start();
}

void OverlayWindow::orderOut() {
    staysInFront_.stop();
    if (view_)
        view_->hide();
}

bool OverlayWindow::refusesKeyboardFocus() const {
    return !view_ || (view_->flags().testFlag(Qt::WindowDoesNotAcceptFocus) && !view_->isActive());
}

/// Without a compositor what is transparent would be black.
void OverlayWindow::cutCorners() {
    if (isCompositorRunning()) {
        view_->setMask({});
        return;
    }
    QBitmap card(cardSize);
    card.clear();
    QPainter painter(&card);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRect(QPoint(), cardSize), cornerRadius, cornerRadius);
    painter.end();
    view_->setMask(QRegion(card));
}

} // namespace lorvane
