#include "AppStore/AppStore.h"
#include "LorvaneApp/Application.h"
#include "LorvaneApp/LinuxPlatform.h"
#include "LorvaneApp/Privacy.h"
#include "LorvaneApp/SingleInstance.h"
#include "LorvaneApp/TerminationSignals.h"
#include "Views/Shell/Graphics.h"
#include "Views/Shell/MainWindow.h"
#include "Views/Shell/TrayItem.h"
#include "Views/Shell/ViewEngine.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

int main(int argc, char **argv) {
    using namespace lorvane;

    keepPrivate();
    TerminationSignals::block();
    const QVariantMap platformData = SingleInstance::platformData();
    setUpDisplay();
    Application application(argc, argv);
    QApplication::setApplicationName(u"lorvane"_s);
    QApplication::setDesktopFileName(u"net.lorvane.Lorvane"_s);
    // The program lives in the tray as much as in its window.
    QApplication::setQuitOnLastWindowClosed(false);
    const SingleInstance instance(platformData);
    if (!instance.isFirst())
        return 0;
    const TerminationSignals signals([] { QApplication::quit(); });
    setUpGraphics();

    ViewEngine engine;
    LinuxPlatform platform(engine);
    AppStore store(platform.ports());
    platform.overlay().setMeter(*store.recordingOverlay().meter());
    MainWindow window(engine, store);
    const TrayItem tray(store, window, engine.paletteColor("accent"));
    QObject::connect(&instance, &SingleInstance::activated, &window, &MainWindow::open);
    window.open();
    // The models take a processor for a second: not before the window is there, which may be never,
    // on a workspace that nobody looks at.
    const auto preload = [&platform] { platform.preload(); };
    QObject::connect(&window, &MainWindow::drawn, &application, preload, Qt::SingleShotConnection);
    QTimer::singleShot(3s, &application, preload);
    return QApplication::exec();
}
