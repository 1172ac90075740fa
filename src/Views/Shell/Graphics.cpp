#include "Views/Shell/Graphics.h"

#include <QDir>
#include <QFileInfo>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickStyle>
#include <QQuickWindow>

#include <algorithm>

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

void setUpGraphics() {
    QQuickStyle::setStyle(u"Basic"_qs);
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    // Qt Quick's own variable has the last word.
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && !hasOpenGLHardware())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace lorvane
