#pragma once

#include "Platform/Linux/AtSpiAccessibility.h"
#include "Platform/Linux/DesktopPermissions.h"
#include "Platform/Linux/PortalSavePanel.h"
#include "Platform/Linux/PulseAudioInput.h"
#include "Platform/Linux/QtPasteboard.h"
#include "Platform/Linux/QtSavePanel.h"
#include "Platform/Linux/QtScreens.h"
#include "Platform/Linux/QtUserDefaults.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Platform/Linux/SystemClock.h"
#include "Platform/Linux/XTestKeyboard.h"
#include "Platform/Linux/XcbHotKey.h"
#include "Platform/Linux/XcbWorkspace.h"
#include "Platform/Ports.h"
#include "Speech/OnDeviceSpeech.h"
#include "Views/Overlay/OverlayWindow.h"
#include "Views/Setup/PermissionPrompt.h"

namespace lorvane {

/// The adapters behind the ports on a Linux desktop. Needs a QApplication. Main thread only.
class LinuxPlatform {
public:
    /// `engine` outlives this.
    explicit LinuxPlatform(QQmlEngine &engine);

    Ports ports();
    OverlayWindow &overlay() { return overlay_; }
    /// Begins to load the recogniser's models, so that the first dictation needn't wait for them.
    void preload() { speech_.preload(); }

private:
    SystemClock clock_;
    PermissionPrompt prompt_;
    PulseAudioInput audioInput_;
    SndfileAudioFile audioFile_;
    OnDeviceSpeech speech_;
    XTestKeyboard keyboard_;
    QtUserDefaults userDefaults_;
    DesktopPermissions permissions_;
    XcbHotKey hotKey_;
    XcbWorkspace workspace_;
    AtSpiAccessibility accessibility_;
    QtPasteboard pasteboard_;
    QtScreens screens_;
    QtSavePanel ownSavePanel_;
    PortalSavePanel savePanel_;
    OverlayWindow overlay_;
};

} // namespace lorvane
