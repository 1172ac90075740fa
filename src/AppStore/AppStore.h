#pragma once

#include "Core/FirstLaunchSetup.h"
#include "Core/HoldToTalkState.h"
#include "Core/LocalRepository.h"
#include "Core/Models.h"
#include "Core/TranscriptDisplay.h"
#include "Platform/Ports.h"
#include "Platform/Task.h"
#include "Platform/Workspace.h"
#include "Services/HotkeyController.h"
#include "Services/RecordingOverlay.h"
#include "Services/SpeechTranscriber.h"
#include "Services/SystemIntegration.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QScopeGuard>
#include <QString>

#include <optional>

namespace lorvane {

/// The one controller: it decides, sequences and reports, and its neighbours do the work. Main
/// thread only. Every property notifies on each set, also when the value is unchanged. A null
/// string stands for an absent message.
class AppStore : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)
    Q_PROPERTY(QString scratchpad READ scratchpad WRITE setScratchpad NOTIFY scratchpadChanged)
    Q_PROPERTY(int historyCount READ historyCount NOTIFY historyChanged)
    Q_PROPERTY(qint64 totalWords READ totalWords NOTIFY historyChanged)
    Q_PROPERTY(double totalDuration READ totalDuration NOTIFY historyChanged)
    Q_PROPERTY(bool isSetupPresented READ isSetupPresented NOTIFY isSetupPresentedChanged)
    Q_PROPERTY(int setupStep READ setupStepNumber WRITE setSetupStepNumber NOTIFY setupStepChanged)
    Q_PROPERTY(bool microphoneGranted READ microphoneGranted NOTIFY permissionsChanged)
    Q_PROPERTY(bool speechGranted READ speechGranted NOTIFY permissionsChanged)
    Q_PROPERTY(bool accessibilityGranted READ accessibilityGranted NOTIFY permissionsChanged)
    Q_PROPERTY(QString speechPermissionText READ speechPermissionText NOTIFY permissionsChanged)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY dictationChanged)
    Q_PROPERTY(bool isHoldingToTalk READ isHoldingToTalk NOTIFY dictationChanged)
    Q_PROPERTY(QString displayedTranscript READ displayedTranscript NOTIFY dictationChanged)
    Q_PROPERTY(bool hasCompletedTranscript READ hasCompletedTranscript NOTIFY dictationChanged)
    Q_PROPERTY(double audioLevel READ audioLevel NOTIFY dictationChanged)
    Q_PROPERTY(QString recoveryAudioURL READ recoveryAudioURL NOTIFY dictationChanged)

public:
    /// Loads the library, starts to watch the desktop and takes the shortcut. `ports` outlive the
    /// store.
    explicit AppStore(const Ports &ports, QObject *parent = nullptr);

    // The library, newest dictation first.
    const QList<TranscriptRecord> &history() const { return history_; }
    const QList<VocabularyEntry> &vocabulary() const { return vocabulary_; }
    const QList<Snippet> &snippets() const { return snippets_; }
    const QString &scratchpad() const { return scratchpad_; }
    const AppSettings &settings() const { return settings_; }
    void setHistory(QList<TranscriptRecord> history);
    void setVocabulary(QList<VocabularyEntry> vocabulary);
    void setSnippets(QList<Snippet> snippets);
    void setScratchpad(QString scratchpad);
    void setSettings(AppSettings settings);
    /// Remove the element of the same `id`; the argument may be an outdated copy.
    void deleteTranscript(const TranscriptRecord &record);
    void deleteVocabulary(const VocabularyEntry &entry);
    void deleteSnippet(const Snippet &snippet);
    Q_INVOKABLE void clearHistory();
    /// Asks for a file in a modal panel, and writes the history to it as plain text.
    Q_INVOKABLE void exportHistory();
    /// Replaces the entry of the same `id`, or appends it. Returns why it was refused, if it was;
    /// nothing has changed then, and the caller shows the words.
    [[nodiscard]] std::optional<QString> saveVocabulary(const VocabularyEntry &entry);
    /// Adds an entry for the trimmed texts; a refusal becomes the error message. A blank phrase
    /// does nothing.
    void addVocabulary(const QString &phrase, const QString &replacement,
                       const QStringList &aliases = {});
    /// The same for a snippet; a blank trigger or content does nothing.
    void addSnippet(const QString &trigger, const QString &content);
    int historyCount() const { return static_cast<int>(history_.size()); }
    /// The words of all records together.
    qint64 totalWords() const;
    /// The seconds of all records together.
    double totalDuration() const;

    // What the user reads.
    QString statusMessage() const { return statusMessage_; }
    QString errorMessage() const { return errorMessage_; }
    bool isBusy() const { return isBusy_; }

    // The setup guide and the grants.
    bool isSetupPresented() const { return isSetupPresented_; }
    SetupStep setupStep() const { return setupStep_; }
    int setupStepNumber() const { return static_cast<int>(setupStep_); }
    /// A number that is no step's becomes the first step.
    void setSetupStepNumber(int step);
    bool microphoneGranted() const { return microphoneGranted_; }
    bool speechGranted() const { return speechGranted_; }
    bool accessibilityGranted() const { return accessibilityGranted_; }
    QString speechPermissionText() const { return speechPermissionText_; }

    // The dictation.
    /// Stays true through a hold whose capture has ended by itself.
    bool isRecording() const;
    bool isHoldingToTalk() const { return holdState_.isHeld(); }
    HoldToTalkState::Phase holdPhase() const { return holdState_.phase(); }
    QString displayedTranscript() const;
    bool hasCompletedTranscript() const { return transcriptDisplay_.hasFinalText(); }
    double audioLevel() const { return transcriber_.level(); }
    /// The path of the audio that was kept after a failure; null when there is none.
    QString recoveryAudioURL() const { return transcriber_.recoveryAudioURL(); }
    /// Whether a recording has gone live and is neither finished nor cancelled.
    bool hasStarted() const { return startedAt_.has_value(); }

    RecordingOverlay &recordingOverlay() { return recordingOverlay_; }
    SystemIntegration &systemIntegration() { return systemIntegration_; }

    /// Starts or finishes a recording: the record button.
    Q_INVOKABLE void toggleRecording();
    /// Throws away a running recording.
    Q_INVOKABLE void cancelRecording();
    Q_INVOKABLE void revealRecoveryAudio();
    /// Shows the indicator with a simulated level for about five seconds.
    Q_INVOKABLE void previewRecordingIndicator();

    Q_INVOKABLE void copyTranscript(const QString &text);
    Q_INVOKABLE void dismissErrorMessage() { setErrorMessage({}); }
    Q_INVOKABLE void dismissStatusMessage() { setStatusMessage({}); }

    /// Reads the three grants anew.
    Q_INVOKABLE void refreshPermissions();
    /// Opens the setup guide, unless a dictation is under way.
    Q_INVOKABLE void showSetupGuide(int step = static_cast<int>(SetupStep::welcome));
    Q_INVOKABLE void finishSetup();
    Q_INVOKABLE void requestMicrophoneAccess();
    Q_INVOKABLE void requestSpeechAccess();
    Q_INVOKABLE void requestAccessibility();

    /// Ends everything, keeps the audio of an interrupted dictation and saves. Can run repeatedly.
    void shutdown();

Q_SIGNALS:
    void historyChanged();
    void vocabularyChanged();
    void snippetsChanged();
    void scratchpadChanged();
    void settingsChanged();
    void statusMessageChanged();
    void errorMessageChanged();
    void isBusyChanged();
    void isSetupPresentedChanged();
    void setupStepChanged();
    void permissionsChanged();
    /// Something about the running dictation or its transcriber has changed.
    void dictationChanged();
    /// The guide wants a window to stand on: the main window has to be opened and come forward.
    void setupRequested();

private:
    // AppStore.cpp
    void observeWorkspace();
    void observeTranscriber();
    void registerShortcut();
    void setStatusMessage(const QString &message);
    void setErrorMessage(const QString &message);
    void setBusy(bool busy);

    // AppStoreDictation.cpp
    void beginHoldToTalk();
    void endHoldToTalk();
    void startRecording(bool holdToTalk);
    Async<> runStart(bool holdToTalk);
    void goLive(bool holdToTalk);
    void startFailed(bool cancelled, const LocalizedError &error, std::optional<SetupStep> step);
    Async<> finishRecording();
    Async<> deliver(QString text);
    void captureEnded();
    Async<> runOverlayPreview();
    void updateOverlay();
    void setStartedAt(std::optional<QDateTime> startedAt);
    /// Makes a change of the dictation's state and notifies of it.
    template <class Change>
    auto mutate(Change change) {
        const auto notify = qScopeGuard([this] { Q_EMIT dictationChanged(); });
        return change();
    }

    // AppStoreSaving.cpp
    void loadLibrary();
    void observeLibrary();
    void scheduleAutosave();
    void save();

    // AppStoreSetup.cpp
    void reportUserDefaults();
    void presentSetup(SetupStep step);
    Async<> askForMicrophone();
    Async<> askForSpeech();

    /// The status of a grant that the user has given.
    static constexpr int authorized = 3;

    Ports ports_;

    QList<TranscriptRecord> history_;
    QList<VocabularyEntry> vocabulary_;
    QList<Snippet> snippets_;
    QString scratchpad_;
    AppSettings settings_;
    QString statusMessage_;
    QString errorMessage_;
    bool isBusy_ = false;
    bool isSetupPresented_;
    SetupStep setupStep_ = SetupStep::welcome;
    bool microphoneGranted_;
    bool speechGranted_;
    SystemIntegration systemIntegration_;
    bool accessibilityGranted_;
    QString speechPermissionText_ = QStringLiteral("Not requested");
    HoldToTalkState holdState_;
    TranscriptDisplay transcriptDisplay_;
    SpeechTranscriber transcriber_;
    HotkeyController hotkey_;
    RecordingOverlay recordingOverlay_;
    Task<> overlayPreviewTask_;
    std::optional<LocalRepository> repository_;
    Clock::TimerId autosaveTimer_ = 0;
    std::optional<QDateTime> startedAt_;
    std::optional<RunningApplication> lastExternalApp_;
    std::optional<SystemIntegration::PasteDestination> recordingTarget_;
    bool recordingShouldPaste_ = false;
    Task<> recordingStartTask_;
    bool persistenceEnabled_ = true;
};

} // namespace lorvane
