#include "Views/Shell/TrayItem.h"

#include "AppStore/AppStore.h"
#include "Views/Kit/Symbols.h"
#include "Views/Shell/MainWindow.h"

#include <QCoreApplication>

namespace lorvane {

namespace {

QIcon trayIcon(bool isRecording, const QColor &color) {
    return Symbols::icon(isRecording ? u"waveform.circle.fill"_qs : u"waveform"_qs, color);
}

} // namespace

TrayItem::TrayItem(AppStore &store, MainWindow &window, const QColor &color, QObject *parent)
    : QObject(parent), store_(store), color_(color), toggle_(store), icon_(trayIcon(false, color)) {
    menu_.addAction(u"Open Lorvane"_qs, &window, &MainWindow::open);
    menu_.addSeparator();
    menu_.addAction(&toggle_);
    cancel_ = menu_.addAction(u"Cancel Dictation"_qs, &store_, &AppStore::cancelRecording);
    menu_.addAction(u"Hold ⌃⌥Space · release to paste"_qs)->setEnabled(false);
    menu_.addSeparator();
    menu_.addAction(u"Quit Lorvane"_qs, this, [this] {
        store_.shutdown();
        QCoreApplication::quit();
    });

    connect(&store_, &AppStore::dictationChanged, this, &TrayItem::refresh);
    refresh();

    icon_.setToolTip(u"Lorvane"_qs);
    icon_.setContextMenu(&menu_);
    icon_.show();
}

TrayItem::~TrayItem() = default;

void TrayItem::refresh() {
    const bool isRecording = store_.isRecording();
    cancel_->setVisible(isRecording);
    // The store tells of every buffer of the microphone; the panel needn't hear of each.
    if (isRecording != showsRecording_) {
        showsRecording_ = isRecording;
        icon_.setIcon(trayIcon(isRecording, color_));
    }
}

} // namespace lorvane
