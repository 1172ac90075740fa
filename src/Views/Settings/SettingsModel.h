#pragma once

#include "AppStore/AppStore.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <utility>

namespace lorvane {

/// What the Settings page shows and changes. A change goes straight to the store.
class SettingsModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store READ store WRITE setStore NOTIFY storeChanged)

    Q_PROPERTY(QStringList languages READ languages CONSTANT)
    Q_PROPERTY(int language READ language WRITE setLanguage NOTIFY settingsChanged)
    Q_PROPERTY(bool smartPunctuation READ smartPunctuation WRITE setSmartPunctuation NOTIFY
                   settingsChanged)
    Q_PROPERTY(bool removeFillers READ removeFillers WRITE setRemoveFillers NOTIFY settingsChanged)
    Q_PROPERTY(bool autoPaste READ autoPaste WRITE setAutoPaste NOTIFY settingsChanged)

    Q_PROPERTY(QString microphoneDetail READ microphoneDetail NOTIFY permissionsChanged)
    Q_PROPERTY(QString speechDetail READ speechDetail NOTIFY permissionsChanged)
    Q_PROPERTY(QString accessibilityDetail READ accessibilityDetail NOTIFY permissionsChanged)
    Q_PROPERTY(bool canPaste READ canPaste NOTIFY permissionsChanged)

    Q_PROPERTY(bool isLocked READ isLocked NOTIFY stateChanged)
    Q_PROPERTY(bool hasSavedRecording READ hasSavedRecording NOTIFY stateChanged)

public:
    using QObject::QObject;

    AppStore *store() const { return store_; }
    void setStore(AppStore *store);

    // The settings. They are the defaults while there is no store.
    /// The names of the languages that are offered.
    static QStringList languages();
    /// The chosen one of `languages`; -1 when another one is stored.
    int language() const;
    void setLanguage(int language);
    bool smartPunctuation() const { return settings().smartPunctuation; }
    void setSmartPunctuation(bool value) { set(&AppSettings::smartPunctuation, value); }
    bool removeFillers() const { return settings().removeFillers; }
    void setRemoveFillers(bool value) { set(&AppSettings::removeFillers, value); }
    bool autoPaste() const { return settings().autoPaste; }
    void setAutoPaste(bool value) { set(&AppSettings::autoPaste, value); }

    // The grants.
    QString microphoneDetail() const;
    QString speechDetail() const { return store_ ? store_->speechPermissionText() : QString(); }
    QString accessibilityDetail() const;
    bool canPaste() const { return store_ && store_->accessibilityGranted(); }

    /// Whether a dictation keeps the guide and the indicator's preview away.
    bool isLocked() const { return state_.isLocked; }
    /// Whether the audio of a failed dictation can be shown.
    bool hasSavedRecording() const { return state_.hasSavedRecording; }

Q_SIGNALS:
    void storeChanged();
    void settingsChanged();
    void permissionsChanged();
    void stateChanged();

private:
    struct State {
        bool isLocked = false;
        bool hasSavedRecording = false;
        bool operator==(const State &) const = default;
    };

    AppSettings settings() const { return store_ ? store_->settings() : AppSettings(); }
    template <class Value>
    void set(Value AppSettings::*field, const Value &value) {
        if (!store_)
            return;
        AppSettings changed = store_->settings();
        changed.*field = value;
        store_->setSettings(std::move(changed));
    }
    void refresh();

    QPointer<AppStore> store_;
    State state_;
};

} // namespace lorvane
