#include "Views/Shell/Graphics.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickStyle>
#include <QQuickWindow>

#include <algorithm>

#if QT_CONFIG(xcb)
#include <sys/socket.h>
#include <xcb/xcb.h>
#endif

namespace lorvane {

namespace {

/// Whether the machine has something that OpenGL could draw with. To load OpenGL only to hear that
/// it hasn't takes longer than the rest of the program's start.
bool hasGraphicsDevice() {
    if (!QDir(u"/dev/dri"_qs).entryList({u"renderD*"_qs}, QDir::System).isEmpty())
        return true;
    // Drivers that have no device there: NVIDIA's own, Windows' for Linux, Arm's own.
    const QStringList others{u"/dev/nvidiactl"_qs, u"/dev/dxg"_qs, u"/dev/mali0"_qs};
    return std::any_of(others.begin(), others.end(),
                       [](const QString &path) { return QFileInfo::exists(path); });
}

bool hasOpenGLHardware() {
    if (!hasGraphicsDevice())
        return false;
    QOpenGLContext context;
    QOffscreenSurface surface;
    if (!context.create())
        return false;
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface))
        return false;
    const auto *text =
        reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    const QString renderer = QString::fromLatin1(text).toLower();
    context.doneCurrent();
    return !renderer.isEmpty() && !renderer.contains(u"llvmpipe") &&
           !renderer.contains(u"softpipe") && !renderer.contains(u"swrast");
}

} // namespace

namespace {

constexpr auto noSharedMemory = "QT_XCB_NO_MITSHM"; // Qt's own
bool hasSetNoSharedMemory = false;

/// Lets a picture wait in the socket for a server that is busy: one of a whole window at scale 1,
/// or as much as the system allows.
void widenWayToServer() {
#if QT_CONFIG(xcb)
    constexpr int bytes = 4 << 20;
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 && QGuiApplication::platformName() == u"xcb")
        setsockopt(xcb_get_file_descriptor(x11->connection()), SOL_SOCKET, SO_SNDBUF, &bytes,
                   sizeof bytes);
#endif
}

} // namespace

void setUpDisplay() {
    // An X server takes pictures out of shared memory when it gets round to it, and Qt waits for
    // that before the next frame, on the main thread. As messages they are small, for only what
    // has changed is sent, and nobody waits.
    hasSetNoSharedMemory = !qEnvironmentVariableIsSet(noSharedMemory);
    if (hasSetNoSharedMemory)
        qputenv(noSharedMemory, "1");
}

void setUpGraphics() {
    // What the program starts settles this for itself.
    if (hasSetNoSharedMemory)
        qunsetenv(noSharedMemory);
    widenWayToServer();
    QQuickStyle::setStyle(u"Basic"_qs);
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    // Qt Quick's own variable has the last word.
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && !hasOpenGLHardware())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace lorvane
