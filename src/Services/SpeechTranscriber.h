#pragma once

#include "Core/TranscriptAssembly.h"
#include "Platform/AudioInput.h"
#include "Platform/Ports.h"
#include "Platform/Speech.h"
#include "Platform/Task.h"
#include "Services/AudioRecording.h"
#include "Services/CaptureReadings.h"
#include "Services/FileSpeechRecognition.h"
#include "Services/TranscriptionError.h"

#include <QObject>
#include <QPointer>
#include <QUuid>

#include <memory>
#include <optional>

namespace lorvane {

/// The dictation session service: it runs one recording at a time, shows a live text meanwhile, and
/// transcribes the finished file. Main thread only. Whatever crosses a suspension or a thread
/// carries the identity of its session and is dropped when that has changed.
class SpeechTranscriber : public QObject {
    Q_OBJECT

public:
    explicit SpeechTranscriber(const Ports &ports, QObject *parent = nullptr);
    ~SpeechTranscriber() override;

    bool isRecording() const { return isRecording_; }
    /// The current text: live, then growing, then final.
    const QString &transcript() const { return transcript_; }
    /// The microphone level of the last buffer, 0 to 1.
    double level() const { return level_; }
    /// The length of the recording so far, in seconds.
    double recordedDuration() const { return recordedDuration_; }
    const QString &processingMessage() const { return processingMessage_; }
    /// Whether the last transcript is confirmed whole.
    bool transcriptionComplete() const { return transcriptionComplete_; }
    /// The path of the kept recording; null when there is none.
    const QString &recoveryAudioURL() const { return recoveryAudioURL_; }
    /// The last session failure; null when there is none.
    const QString &errorMessage() const { return errorMessage_; }
    bool usesOnDeviceRecognition() const { return usesOnDeviceRecognition_; }

    /// Returns when audio is flowing. Throws TranscriptionError or another LocalizedError.
    Async<> start(QString localeIdentifier, QStringList contextualStrings);

    /// Ends the recording and gives the text of the whole file, or as much as exists. Never throws;
    /// `transcriptionComplete` tells the outcome. A second call joins the first.
    Async<QString> stop();

    /// Ends whatever is going on, at once. The audio is deleted unless it is to be preserved.
    void cancel(bool preserveAudio = false);

    /// The meter's reading of a buffer: the top 60 dB of its first channel, as 0 to 1.
    static double measureLevel(const AudioBuffer &buffer);

Q_SIGNALS:
    /// Any of the published values was set.
    void changed();
    void isRecordingChanged(bool isRecording);

private:
    // SpeechTranscriber.cpp
    template <class T>
    void publish(T &property, T value) {
        property = std::move(value);
        Q_EMIT changed();
    }
    void setRecording(bool recording);
    using Self = QPointer<SpeechTranscriber>;
    static bool isStale(const Self &self, const QUuid &session,
                        const std::stop_token &cancellation);
    static void checkSession(const Self &self, const QUuid &session,
                             const std::stop_token &cancellation);
    Async<> prepare(QString localeIdentifier, QStringList contextualStrings, QUuid session);
    Async<> startAudio(QUuid session);
    void receiveReadings(const QUuid &session, const CaptureReadings &readings);
    void captureFailed(const QString &error);
    void stopAudio();
    bool remove(const AudioRecording &recording);

    // SpeechTranscriberLive.cpp
    void startLivePreview();
    void stopLivePreview();
    void schedulePreviewRestart(std::chrono::nanoseconds delay);
    Async<> restartPreview(std::chrono::nanoseconds delay, QUuid live);
    SpeechHandler liveHandler(const QUuid &live);
    void receiveLive(const std::optional<QList<TranscribedWord>> &words, bool ended);

    // SpeechTranscriberFinish.cpp
    Async<QString> finish(Self self, std::shared_ptr<AudioRecording> recording,
                          std::shared_ptr<SpeechRecognizer> recognizer, QUuid session);
    Async<QString> transcribeRecording(Self self, std::shared_ptr<AudioRecording> recording,
                                       std::shared_ptr<SpeechRecognizer> recognizer,
                                       double duration, QString captureError, QUuid session);
    Async<std::optional<QString>>
    transcribeWhole(const std::shared_ptr<AudioRecording> &recording,
                    const std::shared_ptr<SpeechRecognizer> &recognizer, double duration,
                    QUuid session);
    Async<std::optional<QString>> transcribeInChunks(std::shared_ptr<AudioRecording> recording,
                                                     std::shared_ptr<SpeechRecognizer> recognizer,
                                                     double duration, QUuid session,
                                                     QStringList *problems);
    void confirm(const std::shared_ptr<AudioRecording> &recording);
    void removeConfirmed();
    void keepForRecovery(const AudioRecording &recording, const QStringList &problems);

    Ports ports_;

    bool isRecording_ = false;
    QString transcript_;
    double level_ = 0;
    double recordedDuration_ = 0;
    QString processingMessage_;
    bool transcriptionComplete_ = false;
    QString recoveryAudioURL_;
    QString errorMessage_;
    bool usesOnDeviceRecognition_ = false;

    std::shared_ptr<AudioRecording> capture_;
    std::shared_ptr<AudioRecording> confirmed_; ///< whose audio is about to go
    std::unique_ptr<SpeechTask> following_;     ///< of the recording, until its outcome is settled
    std::shared_ptr<SpeechRecognizer> recognizer_;
    QStringList contextualStrings_;
    QUuid sessionID_ = QUuid::createUuid();
    bool isStarting_ = false;

    std::unique_ptr<SpeechTask> liveTask_;
    Task<> liveRotation_;
    QUuid liveID_ = QUuid::createUuid();
    bool liveEnded_ = false;
    TranscriptAssembly liveAssembly_;
    QStringList liveCommitted_;

    std::shared_ptr<FileSpeechRecognition> fileRecognition_;
    Task<QString> finishTask_;
};

} // namespace lorvane
