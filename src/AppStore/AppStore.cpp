// Creation, which ties everything together, and shutdown.

#include "AppStore/AppStore.h"

#include "Platform/Permissions.h"
#include "Platform/UserDefaults.h"

#include <QCoreApplication>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace lorvane {

// The library is loaded before the autosave exists, and everything exists before the shortcut can
// deliver a press.
AppStore::AppStore(const Ports &ports, QObject *parent)
    : QObject(parent),
      ports_(ports),
      isSetupPresented_(FirstLaunchSetup::shouldPresent(ports.userDefaults)),
      microphoneGranted_(ports.permissions.microphoneStatus() == authorized),
      speechGranted_(ports.permissions.speechStatus() == authorized),
      systemIntegration_(ports),
      accessibilityGranted_(systemIntegration_.accessibilityGranted()),
      transcriber_(ports),
      hotkey_(ports.hotKey),
      recordingOverlay_(ports.screens, ports.overlayPanel) {
    loadLibrary();
    reportUserDefaults();
    observeWorkspace();
    observeTranscriber();
    observeLibrary();
    registerShortcut();
    if (auto *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &AppStore::shutdown);
    refreshPermissions();
}

void AppStore::observeWorkspace() {
    const auto noteExternal = [this](const RunningApplication &application) {
        if (application.processId != QCoreApplication::applicationPid())
            lastExternalApp_ = application;
    };
    if (const auto frontmost = ports_.workspace.frontmostApplication())
        noteExternal(*frontmost);

    const QPointer<AppStore> self(this);
    ports_.workspace.observeActivation(
        [self, noteExternal, &clock = ports_.clock](const RunningApplication &application) {
            clock.post([self, noteExternal, application] {
                if (!self)
                    return;
                noteExternal(application);
                self->refreshPermissions();
            });
        });
}

void AppStore::observeTranscriber() {
    const QPointer<AppStore> self(this);
    connect(&transcriber_, &SpeechTranscriber::changed, this, [this, self] {
        Q_EMIT dictationChanged();
        ports_.clock.post([self] {
            if (self)
                self->updateOverlay();
        });
    });
    connect(&transcriber_, &SpeechTranscriber::isRecordingChanged, this,
            [this, self, last = transcriber_.isRecording()](bool isRecording) mutable {
                if (std::exchange(last, isRecording) == isRecording || isRecording)
                    return;
                ports_.clock.post([self] {
                    if (self)
                        self->captureEnded();
                });
            });
}

void AppStore::registerShortcut() {
    const QPointer<AppStore> self(this);
    try {
        hotkey_.registerShortcut(
            [self] {
                if (self)
                    self->beginHoldToTalk();
            },
            [self] {
                if (self)
                    self->endHoldToTalk();
            });
    } catch (const HotkeyController::HotkeyError &error) {
        setStatusMessage(error.localizedDescription());
    }
}

void AppStore::shutdown() {
    setStartedAt(std::nullopt);
    mutate([this] { holdState_.reset(); });
    recordingStartTask_.cancel();
    overlayPreviewTask_.cancel();
    transcriber_.cancel(true);
    recordingOverlay_.hide();
    hotkey_.unregister();
    save();
}

void AppStore::setStatusMessage(const QString &message) {
    statusMessage_ = message;
    Q_EMIT statusMessageChanged();
}

void AppStore::setErrorMessage(const QString &message) {
    errorMessage_ = message;
    Q_EMIT errorMessageChanged();
}

void AppStore::setBusy(bool busy) {
    isBusy_ = busy;
    Q_EMIT isBusyChanged();
}

} // namespace lorvane
