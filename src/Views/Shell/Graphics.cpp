#include "Views/Shell/Graphics.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickStyle>
#include <QQuickWindow>

namespace lorvane {

namespace {

bool hasOpenGLHardware() {
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
