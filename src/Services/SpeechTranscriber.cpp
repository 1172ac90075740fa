#include "Services/SpeechTranscriber.h"

#include "Platform/Permissions.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <algorithm>
#include <cmath>
#include <exception>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

using Kind = TranscriptionError::Kind;

constexpr int maximumContextualStrings = 100;
constexpr int speechAuthorized = 3;

QStringList cleaned(const QStringList &contextualStrings) {
    QStringList result = contextualStrings;
    result.removeAll(QString());
    return result.mid(0, maximumContextualStrings);
}

} // namespace

SpeechTranscriber::SpeechTranscriber(const Ports &ports, QObject *parent)
    : QObject(parent), ports_(ports) {}

SpeechTranscriber::~SpeechTranscriber() {
    liveRotation_.cancel();
    if (liveTask_)
        liveTask_->cancel();
    finishTask_.cancel();
    ports_.audioInput.stop();
    if (capture_)
        capture_->close();
    removeConfirmed();
}

void SpeechTranscriber::setRecording(bool recording) {
    publish(isRecording_, recording);
    Q_EMIT isRecordingChanged(recording);
}

Async<> SpeechTranscriber::start(QString localeIdentifier, QStringList contextualStrings) {
    const std::stop_token cancellation = co_await currentCancellation;
    if (isStarting_ || capture_ || finishTask_ || isRecording_)
        throw TranscriptionError(Kind::alreadyRecording);
    if (cancellation.stop_requested())
        throw TranscriptionError(Kind::cancelled);

    isStarting_ = true;
    const Self self(this);
    const auto notStarting = qScopeGuard([self] {
        if (self)
            self->isStarting_ = false;
    });
    publish(errorMessage_, QString());
    publish(processingMessage_, u"Preparing microphone…"_s);
    publish(transcriptionComplete_, false);
    sessionID_ = QUuid::createUuid();
    const QUuid session = sessionID_;
    try {
        co_await prepare(localeIdentifier, contextualStrings, session);
    } catch (const LocalizedError &error) {
        // With another identity somebody has cancelled this session already.
        if (self && sessionID_ == session) {
            cancel();
            publish(errorMessage_, error.localizedDescription());
        }
        throw;
    }
}

/// The guard after each suspension, in which the session may have been cancelled.
bool SpeechTranscriber::isStale(const Self &self, const QUuid &session,
                                const std::stop_token &cancellation) {
    return !self || self->sessionID_ != session || cancellation.stop_requested();
}

void SpeechTranscriber::checkSession(const Self &self, const QUuid &session,
                                     const std::stop_token &cancellation) {
    if (isStale(self, session, cancellation))
        throw TranscriptionError(Kind::cancelled);
}

Async<> SpeechTranscriber::prepare(QString localeIdentifier, QStringList contextualStrings,
                                   QUuid session) {
    const std::stop_token cancellation = co_await currentCancellation;
    const Self self(this);
    const bool microphone = co_await ports_.permissions.requestMicrophone();
    checkSession(self, session, cancellation);
    if (!microphone)
        throw TranscriptionError(Kind::microphoneDenied);
    const int speech = co_await ports_.permissions.requestSpeech();
    checkSession(self, session, cancellation);
    if (speech != speechAuthorized)
        throw TranscriptionError(Kind::speechDenied);

    const auto recognizer = ports_.speech.makeRecognizer(localeIdentifier);
    if (!recognizer || !recognizer->isAvailable())
        throw TranscriptionError(Kind::unavailableLanguage);
    recognizer_ = recognizer;
    contextualStrings_ = cleaned(contextualStrings);
    publish(usesOnDeviceRecognition_, recognizer->supportsOnDeviceRecognition());
    publish(transcript_, QString());
    publish(recordedDuration_, 0.0);
    liveCommitted_.clear();
    liveAssembly_ = TranscriptAssembly();

    co_await startAudio(session);
    following_ = ports_.speech.followRecording(capture_->url, recognizer->localeIdentifier(),
                                               contextualStrings_);
    setRecording(true);
    publish(processingMessage_, u"Recording"_s);
    startLivePreview();
}

Async<> SpeechTranscriber::startAudio(QUuid session) {
    const std::stop_token cancellation = co_await currentCancellation;
    const Self self(this);
    const AudioFormat format = co_await ports_.audioInput.format();
    checkSession(self, session, cancellation);
    if (!format.isUsable())
        throw TranscriptionError(Kind::unavailableInput);
    capture_ = std::make_shared<AudioRecording>(ports_.audioFile, format);
    publish(recoveryAudioURL_, QString());

    // The audio thread writes, measures and wakes: it neither allocates nor waits for this thread.
    const auto readings = std::make_shared<CaptureReadings>();
    const std::shared_ptr<Wakeup> wakeup = ports_.clock.makeWakeup([self, session, readings] {
        if (self)
            self->receiveReadings(session, *readings);
    });
    AudioInput::Tap tap = [capture = capture_, readings, wakeup](const AudioBuffer &buffer) {
        const AudioRecording::Progress progress = capture->append(buffer);
        readings->duration = progress.duration;
        readings->level = measureLevel(buffer);
        readings->hasFailed = progress.error.has_value();
        wakeup->wake();
    };
    AudioInput::Ended ended = [self, session, readings](const QString &reason) {
        if (self)
            self->receiveReadings(session, *readings);
        if (self && self->sessionID_ == session && self->isRecording_)
            self->captureFailed(u"Audio capture failed: "_s + reason);
    };
    std::exception_ptr refusal;
    try {
        co_await ports_.audioInput.start(format, std::move(tap), std::move(ended));
    } catch (const LocalizedError &) {
        refusal = std::current_exception();
    }
    checkSession(self, session, cancellation);
    if (!refusal)
        co_return;
    // The microphone may have gone since its format was told.
    const AudioFormat present = co_await ports_.audioInput.format();
    checkSession(self, session, cancellation);
    if (!present.isUsable())
        throw TranscriptionError(Kind::unavailableInput);
    std::rethrow_exception(refusal);
}

void SpeechTranscriber::receiveReadings(const QUuid &session, const CaptureReadings &readings) {
    if (sessionID_ != session || !isRecording_)
        return;
    publish(recordedDuration_, readings.duration.load());
    publish(level_, readings.level.load());
    if (readings.hasFailed && capture_)
        captureFailed(capture_->failure().value_or(QString()));
}

/// The recording ends here; what is in the file is still good, and the session lives on until it is
/// stopped or cancelled.
void SpeechTranscriber::captureFailed(const QString &error) {
    publish(errorMessage_, error);
    stopAudio();
}

double SpeechTranscriber::measureLevel(const AudioBuffer &buffer) {
    if (!buffer.samples || buffer.frameCount == 0)
        return 0;
    float sum = 0;
    for (qsizetype frame = 0; frame < buffer.frameCount; ++frame) {
        const float sample = buffer.samples[frame * buffer.channelCount];
        sum += sample * sample;
    }
    const double rms = std::sqrt(static_cast<double>(sum) / static_cast<double>(buffer.frameCount));
    const double decibels = 20 * std::log10(std::max(rms, 0.0001));
    return std::clamp((decibels + 60) / 60, 0.0, 1.0);
}

void SpeechTranscriber::stopAudio() {
    ports_.audioInput.stop();
    setRecording(false);
    publish(level_, 0.0);
}

void SpeechTranscriber::cancel(bool preserveAudio) {
    sessionID_ = QUuid::createUuid();
    removeConfirmed();
    stopAudio();
    stopLivePreview();
    if (const auto recognition = std::exchange(fileRecognition_, nullptr))
        recognition->cancel();
    std::exchange(finishTask_, {}).cancel();
    following_.reset();
    if (const auto capture = std::exchange(capture_, nullptr)) {
        capture->close();
        if (preserveAudio)
            publish(recoveryAudioURL_, capture->url);
        else
            remove(*capture);
    }
    recognizer_.reset();
    publish(processingMessage_, u""_s);
    publish(transcriptionComplete_, false);
}

/// The names go at once. To give back the space of an hour's audio takes a file system a tenth of a
/// second and more; it does so when the file is closed for the last time, on another thread.
bool SpeechTranscriber::remove(const AudioRecording &recording) {
    const auto audio = std::make_shared<QFile>(recording.url);
    audio->open(QIODevice::ReadOnly);
    const bool isRemoved = QDir(recording.directory).removeRecursively();
    ports_.clock.runInBackground([audio] { audio->close(); });
    return isRemoved;
}

} // namespace lorvane
