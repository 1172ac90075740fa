// The state of the setup guide, and the grants that it asks for.

#include "AppStore/AppStore.h"

#include "Platform/Permissions.h"
#include "Platform/UserDefaults.h"

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

constexpr int notDetermined = 0;

QString speechPermission(int status) {
    switch (status) {
    case 0: return u"Requested when you first dictate"_s;
    case 1: return u"Denied — enable in System Settings"_s;
    case 2: return u"Restricted by this Mac"_s;
    case 3: return u"Allowed"_s;
    default: return u"Unknown"_s;
    }
}

} // namespace

// A library that can't be read is the graver matter.
void AppStore::reportUserDefaults() {
    const QString error = ports_.userDefaults.readError();
    if (error.isNull() || !errorMessage_.isNull())
        return;
    setErrorMessage(u"Could not load the state of setup: "_s + error +
                    u" Saving it is disabled to preserve the existing file. "
                    "See README for recovery."_s);
}

void AppStore::setSetupStepNumber(int step) {
    const bool known = step >= static_cast<int>(SetupStep::welcome) &&
                       step <= static_cast<int>(SetupStep::practice);
    setupStep_ = known ? static_cast<SetupStep>(step) : SetupStep::welcome;
    Q_EMIT setupStepChanged();
}

void AppStore::refreshPermissions() {
    microphoneGranted_ = ports_.permissions.microphoneStatus() == authorized;
    speechGranted_ = ports_.permissions.speechStatus() == authorized;
    accessibilityGranted_ = systemIntegration_.accessibilityGranted();
    speechPermissionText_ = speechPermission(ports_.permissions.speechStatus());
    Q_EMIT permissionsChanged();
}

void AppStore::presentSetup(SetupStep step) {
    setupStep_ = step;
    Q_EMIT setupStepChanged();
    isSetupPresented_ = true;
    Q_EMIT isSetupPresentedChanged();
    Q_EMIT setupRequested();
}

void AppStore::showSetupGuide(int step) {
    if (isBusy_ || isRecording())
        return;
    refreshPermissions();
    presentSetup(static_cast<SetupStep>(step));
}

void AppStore::finishSetup() {
    FirstLaunchSetup::complete(ports_.userDefaults);
    isSetupPresented_ = false;
    Q_EMIT isSetupPresentedChanged();
}

void AppStore::requestMicrophoneAccess() { Task<>::run(askForMicrophone()); }

void AppStore::requestSpeechAccess() { Task<>::run(askForSpeech()); }

// A grant that was refused once brings up no prompt any more, only the system's own page.
Async<> AppStore::askForMicrophone() {
    const QPointer<AppStore> self(this);
    if (ports_.permissions.microphoneStatus() == notDetermined)
        co_await ports_.permissions.requestMicrophone();
    else if (!microphoneGranted_)
        systemIntegration_.openPrivacySettings(SystemIntegration::PrivacyPane::microphone);
    if (self)
        refreshPermissions();
}

Async<> AppStore::askForSpeech() {
    const QPointer<AppStore> self(this);
    if (ports_.permissions.speechStatus() == notDetermined)
        co_await ports_.permissions.requestSpeech();
    else if (!speechGranted_)
        systemIntegration_.openPrivacySettings(SystemIntegration::PrivacyPane::speech);
    if (self)
        refreshPermissions();
}

void AppStore::requestAccessibility() {
    systemIntegration_.requestAccessibility();
    refreshPermissions();
}

} // namespace lorvane
