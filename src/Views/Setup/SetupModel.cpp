#include "Views/Setup/SetupModel.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <array>

namespace lorvane {

namespace {

enum Step { welcome, microphone, speech, accessibility, practice };

struct GrantPage {
    QString title;
    QString detail;
    QString panel;
    QString symbol;
    QString instructions;
    QString remark;
    QString requestLabel;
};

/// Both pages of the grants that a dictation needs are made alike.
GrantPage recordingPage(const QString &title, const QString &detail, const QString &panel,
                        const QString &symbol, const QString &requestLabel) {
    return {
        title,
        detail,
        panel,
        symbol,
        u"If you previously chose Don’t Allow, open System Settings → Privacy & Security → "_qs +
            panel + u" and turn on Lorvane. If it’s missing, request access here first."_qs,
        u"After a development rebuild, macOS may need you to allow this copy again. If access "
        "still fails, switch Lorvane off and back on, then reopen it if macOS asks."_qs,
        requestLabel};
}

const GrantPage &grantPage(int step) {
    static const std::array<GrantPage, 5> pages{{
        {},
        recordingPage(u"Give your voice a way in."_qs,
                      u"Click Allow microphone below, then choose Allow in the macOS prompt."_qs,
                      u"Microphone"_qs, u"mic.fill"_qs, u"Allow microphone"_qs),
        recordingPage(u"Let Apple turn speech into text."_qs,
                      u"Click Allow Speech Recognition, then choose Allow in the macOS prompt. "
                      "Apple may process audio online when on-device recognition is "
                      "unavailable."_qs,
                      u"Speech Recognition"_qs, u"waveform"_qs, u"Allow Speech Recognition"_qs),
        {u"Put the words at your cursor."_qs,
         u"Accessibility access lets Lorvane restore your selected text field and request a paste. "
         "It’s optional if you prefer to copy and paste yourself."_qs,
         u"Accessibility"_qs, u"accessibility"_qs,
         u"Open System Settings → Privacy & Security → Accessibility. On newer macOS versions this "
         "may be called Device Control and Data Access. Turn on Lorvane and authenticate if macOS "
         "asks."_qs,
         u"If Lorvane is missing, use the + button to add this app. Keep the app in the same "
         "location; if you move or rebuild it, macOS may ask you to allow it again."_qs,
         u"Request Accessibility access"_qs},
        {},
    }};
    return pages.at(static_cast<std::size_t>(step));
}

} // namespace

void SetupModel::setStore(AppStore *store) {
    if (store_)
        store_->disconnect(this);
    store_ = store;
    if (store_) {
        connect(store_, &AppStore::setupStepChanged, this, &SetupModel::stepChanged);
        connect(store_, &AppStore::setupStepChanged, this, &SetupModel::grantsChanged);
        connect(store_, &AppStore::permissionsChanged, this, &SetupModel::grantsChanged);
    }
    Q_EMIT storeChanged();
    Q_EMIT stepChanged();
    Q_EMIT grantsChanged();
}

QStringList SetupModel::steps() {
    return {u"Welcome"_qs, u"Microphone"_qs, u"Speech"_qs, u"Pasting"_qs, u"Try it"_qs};
}

QSize SetupModel::guideSize() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return guideSize(screen ? std::optional(screen->availableSize()) : std::nullopt);
}

QSize SetupModel::guideSize(const std::optional<QSize> &screen) {
    const QSize available = screen.value_or(QSize(1440, 900));
    return {std::min(860, available.width() - 60), std::min(760, available.height() - 80)};
}

QString SetupModel::position() const { return u"%1 of %2"_qs.arg(step() + 1).arg(steps().size()); }

QString SetupModel::continueLabel() const {
    return step() == practice ? u"Start using Lorvane"_qs : u"Continue"_qs;
}

bool SetupModel::asksForGrant() const { return step() != welcome && step() != practice; }

QString SetupModel::title() const { return grantPage(step()).title; }

QString SetupModel::detail() const { return grantPage(step()).detail; }

QString SetupModel::panel() const { return grantPage(step()).panel; }

QString SetupModel::symbol() const { return grantPage(step()).symbol; }

QString SetupModel::instructions() const { return grantPage(step()).instructions; }

QString SetupModel::remark() const { return grantPage(step()).remark; }

QString SetupModel::settingsLabel() const { return u"Open %1 settings"_qs.arg(panel()); }

bool SetupModel::isAllowed() const {
    if (!store_)
        return false;
    switch (step()) {
    case microphone: return store_->microphoneGranted();
    case speech: return store_->speechGranted();
    case accessibility: return store_->accessibilityGranted();
    default: return false;
    }
}

QString SetupModel::requestLabel() const {
    return isAllowed() ? u"Already allowed"_qs : grantPage(step()).requestLabel;
}

QString SetupModel::grantStatus() const {
    return isAllowed() ? u"Access is enabled"_qs : u"Waiting for your permission"_qs;
}

void SetupModel::goOn() {
    if (!store_)
        return;
    if (step() == practice)
        store_->finishSetup();
    else
        store_->setSetupStepNumber(step() + 1);
}

void SetupModel::goBack() {
    if (store_ && canGoBack())
        store_->setSetupStepNumber(step() - 1);
}

void SetupModel::request() {
    if (!store_)
        return;
    switch (step()) {
    case microphone: store_->requestMicrophoneAccess(); break;
    case speech: store_->requestSpeechAccess(); break;
    case accessibility: store_->requestAccessibility(); break;
    default: break;
    }
}

void SetupModel::openSettings() {
    using Pane = SystemIntegration::PrivacyPane;
    if (!store_)
        return;
    SystemIntegration &system = store_->systemIntegration();
    switch (step()) {
    case microphone: system.openPrivacySettings(Pane::microphone); break;
    case speech: system.openPrivacySettings(Pane::speech); break;
    case accessibility: system.openPrivacySettings(Pane::accessibility); break;
    default: break;
    }
}

void SetupModel::showApplication() {
    if (store_)
        store_->systemIntegration().showApplication();
}

} // namespace lorvane
