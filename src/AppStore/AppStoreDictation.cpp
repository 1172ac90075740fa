// The flow of one dictation, from a press of the shortcut or of the record button to the text at
// the cursor.

#include "AppStore/AppStore.h"

#include "Core/TextProcessor.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {

bool AppStore::isRecording() const {
    return transcriber_.isRecording() || (holdState_.isHeld() && startedAt_);
}

QString AppStore::displayedTranscript() const {
    return transcriptDisplay_.text(transcriber_.transcript());
}

void AppStore::setStartedAt(std::optional<QDateTime> startedAt) {
    startedAt_ = std::move(startedAt);
    Q_EMIT dictationChanged();
}

void AppStore::beginHoldToTalk() {
    if (isBusy_ || startedAt_ || transcriber_.isRecording())
        return;
    if (mutate([this] { return holdState_.press(); }))
        startRecording(true);
}

void AppStore::endHoldToTalk() {
    switch (mutate([this] { return holdState_.release(); })) {
    case HoldToTalkState::ReleaseAction::none: return;
    case HoldToTalkState::ReleaseAction::cancelPreparation:
        // The start task lowers isBusy when it has wound down.
        recordingStartTask_.cancel();
        transcriber_.cancel();
        recordingOverlay_.hide();
        setStatusMessage(u"Released before the microphone was ready. After granting permissions, "
                         "hold ⌃⌥Space again."_s);
        return;
    case HoldToTalkState::ReleaseAction::finish:
        Task<>::post(ports_.clock, finishRecording());
        return;
    }
}

void AppStore::toggleRecording() {
    if (isBusy_)
        return;
    if (startedAt_)
        Task<>::post(ports_.clock, finishRecording());
    else
        startRecording(false);
}

void AppStore::startRecording(bool holdToTalk) {
    overlayPreviewTask_.cancel();
    refreshPermissions();
    if (const auto step = RecordingAccess::requiredSetup(microphoneGranted_, speechGranted_)) {
        mutate([this] { holdState_.reset(); });
        recordingOverlay_.hide();
        setErrorMessage({});
        setStatusMessage({});
        presentSetup(*step);
        return;
    }
    mutate([this] { transcriptDisplay_.reset(); });
    setBusy(true);
    setErrorMessage({});
    setStatusMessage(u"Preparing microphone…"_s);
    // The target is settled at the moment of the press, before any waiting.
    recordingTarget_ = systemIntegration_.captureDestination(lastExternalApp_, holdToTalk);
    recordingShouldPaste_ = holdToTalk || settings_.autoPaste;
    recordingOverlay_.update(0, 0, u"Preparing microphone…"_s);
    recordingOverlay_.show(RecordingOverlay::Mode::preparing);
    recordingStartTask_ = Task<>::post(ports_.clock, runStart(holdToTalk));
}

Async<> AppStore::runStart(bool holdToTalk) {
    const std::stop_token cancellation = co_await currentCancellation;
    QStringList hints = VocabularyEntry::recognitionHints(vocabulary_);
    for (const Snippet &snippet : snippets_)
        hints.append(snippet.trigger);
    try {
        co_await transcriber_.start(settings_.languageIdentifier, hints);
        if (cancellation.stop_requested())
            throw TranscriptionError(TranscriptionError::Kind::cancelled);
        goLive(holdToTalk);
    } catch (const TranscriptionError &error) {
        startFailed(cancellation.stop_requested(), error, error.permissionSetupStep());
    } catch (const LocalizedError &error) {
        startFailed(cancellation.stop_requested(), error, std::nullopt);
    }
    recordingStartTask_ = {};
    setBusy(false);
    refreshPermissions();
}

void AppStore::goLive(bool holdToTalk) {
    if (holdToTalk && !mutate([this] { return holdState_.recordingStarted(); })) {
        // Nobody holds the key any more.
        transcriber_.cancel();
        return;
    }
    mutate([this] { transcriptDisplay_.showLivePreview(); });
    setStartedAt(ports_.clock.now());
    recordingOverlay_.show(RecordingOverlay::Mode::recording);
    const QString listening =
        holdToTalk ? u"Listening · release ⌃⌥Space to paste · "_s : u"Listening · "_s;
    setStatusMessage(listening + (transcriber_.usesOnDeviceRecognition()
                                      ? u"on-device recognition"_s
                                      : u"Apple Speech service"_s));
}

void AppStore::startFailed(bool cancelled, const LocalizedError &error,
                           std::optional<SetupStep> step) {
    if (cancelled) {
        // The message of the early release stands.
        transcriber_.cancel();
    } else if (step) {
        setErrorMessage({});
        setStatusMessage({});
        presentSetup(*step);
    } else {
        setErrorMessage(error.localizedDescription());
        setStatusMessage({});
    }
    mutate([this] { holdState_.reset(); });
    recordingOverlay_.hide();
}

Async<> AppStore::finishRecording() {
    if (isBusy_ || !startedAt_)
        co_return;
    setBusy(true);
    // Cleared before the audio stops, so that its end isn't mistaken for an unexpected one.
    const QDateTime startedAt = *startedAt_;
    setStartedAt(std::nullopt);
    const double elapsed = static_cast<double>(startedAt.msecsTo(ports_.clock.now())) / 1000;
    setStatusMessage(u"Transcribing the complete recording…"_s);
    recordingOverlay_.show(RecordingOverlay::Mode::transcribing);

    const QString raw = co_await transcriber_.stop();
    mutate([this] { holdState_.reset(); });
    const QString text = TextProcessor::process(raw, vocabulary_, snippets_, settings_);
    mutate([&] { transcriptDisplay_.finish(text); });
    if (text.isEmpty()) {
        setStatusMessage(transcriber_.transcriptionComplete()
                             ? u"No speech detected. Try again when you’re ready."_s
                             : QString());
        setBusy(false);
        recordingOverlay_.hide();
        co_return;
    }

    TranscriptRecord record;
    record.createdAt = ports_.clock.now();
    record.text = text;
    record.duration =
        transcriber_.recordedDuration() > 0 ? transcriber_.recordedDuration() : elapsed;
    history_.prepend(record);
    Q_EMIT historyChanged();
    // On disk before any attempt to paste it.
    save();
    co_await deliver(text);
    setBusy(false);
    recordingOverlay_.hide();
}

Async<> AppStore::deliver(QString text) {
    if (!transcriber_.transcriptionComplete()) {
        // An incomplete transcript isn't typed into another application.
        systemIntegration_.copy(text);
        setStatusMessage({});
    } else if (!recordingShouldPaste_) {
        systemIntegration_.copy(text);
        setStatusMessage(u"Saved to history and copied to the clipboard."_s);
    } else {
        const bool pasted = co_await systemIntegration_.paste(text, recordingTarget_);
        setStatusMessage(pasted ? u"Saved and paste requested at your cursor."_s
                                : u"Saved and copied. Paste with ⌘V; automatic paste needs "
                                  "Accessibility access and the original text field."_s);
    }
}

void AppStore::cancelRecording() {
    if (isBusy_)
        return;
    setStartedAt(std::nullopt);
    mutate([this] { holdState_.reset(); });
    transcriber_.cancel();
    mutate([this] { transcriptDisplay_.reset(); });
    recordingOverlay_.hide();
    setStatusMessage(u"Dictation cancelled."_s);
}

/// Capture has stopped. Every regular end has cleared startedAt first.
void AppStore::captureEnded() {
    if (!startedAt_ || isBusy_)
        return;
    if (holdState_.isHeld())
        setStatusMessage(u"Audio capture ended unexpectedly. Release the shortcut to recover the "
                         "captured recording."_s);
    else
        Task<>::run(finishRecording());
}

void AppStore::updateOverlay() {
    recordingOverlay_.update(transcriber_.level(), transcriber_.recordedDuration(),
                             transcriber_.processingMessage());
}

void AppStore::revealRecoveryAudio() {
    if (!recoveryAudioURL().isEmpty())
        ports_.workspace.showFile(recoveryAudioURL());
}

void AppStore::previewRecordingIndicator() {
    if (isBusy_ || isRecording())
        return;
    overlayPreviewTask_.cancel();
    recordingOverlay_.show(RecordingOverlay::Mode::preview);
    overlayPreviewTask_ = Task<>::post(ports_.clock, runOverlayPreview());
}

Async<> AppStore::runOverlayPreview() {
    // A cancelled preview doesn't hide the indicator: it belongs to who cancelled it.
    const std::stop_token cancellation = co_await currentCancellation;
    for (int step = 0; step <= 64; ++step) {
        if (cancellation.stop_requested())
            co_return;
        recordingOverlay_.update(0.25 + 0.65 * std::abs(std::sin(step * 0.7)), step * 0.08,
                                 u"Preview only · microphone off"_s);
        co_await sleep(ports_.clock, 80ms);
    }
    if (!cancellation.stop_requested())
        recordingOverlay_.hide();
}

} // namespace lorvane
