#include "Views/Settings/SettingsModel.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace lorvane {

namespace {

struct Language {
    const char16_t *name;
    const char16_t *identifier;
};

constexpr std::array<Language, 7> offered{{
    {u"English (Australia)", u"en-AU"},
    {u"English (United States)", u"en-US"},
    {u"English (United Kingdom)", u"en-GB"},
    {u"Français", u"fr-FR"},
    {u"Deutsch", u"de-DE"},
    {u"Español", u"es-ES"},
    {u"日本語", u"ja-JP"},
}};

} // namespace

void SettingsModel::setStore(AppStore *store) {
    if (store_)
        store_->disconnect(this);
    store_ = store;
    if (store_) {
        connect(store_, &AppStore::settingsChanged, this, &SettingsModel::settingsChanged);
        connect(store_, &AppStore::permissionsChanged, this, &SettingsModel::permissionsChanged);
        connect(store_, &AppStore::dictationChanged, this, &SettingsModel::refresh);
        connect(store_, &AppStore::isBusyChanged, this, &SettingsModel::refresh);
    }
    refresh();
    Q_EMIT storeChanged();
    Q_EMIT settingsChanged();
    Q_EMIT permissionsChanged();
}

QStringList SettingsModel::languages() {
    QStringList names;
    for (const Language &language : offered)
        names.append(QString::fromUtf16(language.name));
    return names;
}

int SettingsModel::language() const {
    const QString identifier = settings().languageIdentifier;
    const auto *const chosen =
        std::find_if(offered.begin(), offered.end(), [&](const Language &language) {
            return identifier == QString::fromUtf16(language.identifier);
        });
    return chosen == offered.end() ? -1 : static_cast<int>(std::distance(offered.begin(), chosen));
}

void SettingsModel::setLanguage(int language) {
    // Whoever leaves the choice open leaves the stored language as it is.
    if (language >= 0 && language < std::ssize(offered))
        set(&AppSettings::languageIdentifier,
            QString::fromUtf16(offered.at(static_cast<std::size_t>(language)).identifier));
}

QString SettingsModel::microphoneDetail() const {
    return store_ && store_->microphoneGranted()
               ? u"Allowed. Voice recording is available."_qs
               : u"Access is needed before a recording can start."_qs;
}

QString SettingsModel::accessibilityDetail() const {
    return canPaste() ? u"Enabled. Automatic insertion is available."_qs
                      : u"Needed only to paste into another app automatically."_qs;
}

/// The store tells of every buffer of the microphone; the page only needs what has changed.
void SettingsModel::refresh() {
    State state;
    if (store_)
        state = {store_->isBusy() || store_->isRecording(), !store_->recoveryAudioURL().isEmpty()};
    if (state != state_) {
        state_ = state;
        Q_EMIT stateChanged();
    }
}

} // namespace lorvane
