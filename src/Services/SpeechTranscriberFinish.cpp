// From the end of a recording to its text: the whole file is transcribed afresh, and its audio goes
// only when the transcript is confirmed.

#include "Services/SpeechTranscriber.h"

#include "Core/ChunkTranscriptAssembly.h"
#include "Core/TranscriptIntegrity.h"
#include "Services/LongFormFileRecognition.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

double durationOf(AudioFile &files, const QString &url, double fallback) {
    try {
        const auto file = files.openForReading(url);
        return static_cast<double>(file->length()) / file->format().sampleRate;
    } catch (const LocalizedError &) {
        return fallback;
    }
}

Async<> nextTurn(Clock &clock) {
    using Nothing = std::monostate;
    co_await suspend<Nothing>(clock,
                              [](const Continuation<Nothing> &caller) { caller.resume({}); });
}

QList<TranscribedWord> shifted(QList<TranscribedWord> words, double seconds) {
    for (TranscribedWord &word : words)
        word.start += seconds;
    return words;
}

/// The words that start at `time` or later, with times from there.
QList<TranscribedWord> wordsFrom(double time, const QList<TranscribedWord> &words) {
    const auto first =
        std::find_if(words.begin(), words.end(),
                     [time](const TranscribedWord &word) { return word.start >= time; });
    return shifted(words.sliced(first - words.begin()), -time);
}

} // namespace

Async<QString> SpeechTranscriber::stop() {
    if (finishTask_) {
        const Task<QString> running = finishTask_;
        co_return co_await running;
    }
    if (isStarting_) {
        cancel();
        co_return QString();
    }
    if (!capture_ || !recognizer_)
        co_return transcript_;

    const QUuid session = sessionID_;
    setRecording(false);
    publish(level_, 0.0);
    stopLivePreview();
    const Self self(this);
    // Its first part runs here and now, but the session isn't open any more to whoever asks.
    finishTask_ = Task<QString>::run(finish(self, capture_, recognizer_, session));
    const Task<QString> running = finishTask_;
    const QString text = co_await running;
    if (self && sessionID_ == session)
        finishTask_ = {};
    co_return text;
}

/// Lets the last words arrive, closes the file, and has it transcribed.
Async<QString> SpeechTranscriber::finish(Self self, std::shared_ptr<AudioRecording> recording,
                                         std::shared_ptr<SpeechRecognizer> recognizer,
                                         QUuid session) {
    const std::stop_token cancellation = co_await currentCancellation;
    co_await ports_.audioInput.finish();
    if (isStale(self, session, cancellation))
        co_return self ? transcript_ : QString();
    recording->close();
    publish(recordedDuration_, durationOf(ports_.audioFile, recording->url, recordedDuration_));
    // `start` cleared it, so it can only hold a capture failure of this session.
    // The failure of the very last buffer is only known to the recording.
    const QString captureError =
        errorMessage_.isEmpty() ? recording->failure().value_or(QString()) : errorMessage_;
    // The rest has a turn of its own, in which the session, or this, may be gone.
    co_await nextTurn(ports_.clock);
    if (isStale(self, session, cancellation))
        co_return self ? transcript_ : QString();
    co_return co_await transcribeRecording(self, recording, recognizer, recordedDuration_,
                                           captureError, session);
}

Async<QString> SpeechTranscriber::transcribeRecording(Self self,
                                                      std::shared_ptr<AudioRecording> recording,
                                                      std::shared_ptr<SpeechRecognizer> recognizer,
                                                      double duration, QString captureError,
                                                      QUuid session) {
    const std::stop_token cancellation = co_await currentCancellation;
    // Each reason why the transcript is not confirmed.
    QStringList problems;
    if (!captureError.isEmpty())
        problems.append(captureError);
    const QString liveReference = transcript_;
    publish(processingMessage_, u"Transcribing the full recording…"_s);

    std::optional<QString> finalText;
    try {
        finalText = co_await transcribeWhole(recording, recognizer, duration, session);
    } catch (const LocalizedError &) {
        // The chunks are the remedy, and the user needn't know.
        if (isStale(self, session, cancellation))
            co_return self ? transcript_ : QString();
    }
    if (finalText && TranscriptIntegrity::isSeverelyShorter(*finalText, liveReference))
        finalText.reset();
    if (!finalText && !isStale(self, session, cancellation))
        finalText =
            co_await transcribeInChunks(recording, recognizer, duration, session, &problems);
    if (!finalText || isStale(self, session, cancellation))
        co_return self ? transcript_ : QString();

    publish(transcript_, *finalText);
    if (TranscriptIntegrity::isSeverelyShorter(transcript_, liveReference))
        problems.append(u"The final result was unexpectedly shorter than the live transcript; the "
                        "audio was kept instead of accepting a potentially truncated result."_s);
    publish(transcriptionComplete_, problems.isEmpty());
    if (transcriptionComplete_)
        confirm(recording);
    else
        keepForRecovery(*recording, problems);
    following_.reset();
    capture_.reset();
    recognizer_.reset();
    co_return transcript_;
}

/// None where no model for whole files is installed.
Async<std::optional<QString>>
SpeechTranscriber::transcribeWhole(const std::shared_ptr<AudioRecording> &recording,
                                   const std::shared_ptr<SpeechRecognizer> &recognizer,
                                   double duration, QUuid session) {
    LongFormFileRecognition::OnUpdate onUpdate = [self = Self(this), session](const QString &text) {
        if (self && self->sessionID_ == session)
            self->publish(self->transcript_, text);
    };
    return LongFormFileRecognition::recognizeIfInstalled(
        ports_.clock, ports_.speech, recording->url, recognizer->localeIdentifier(),
        contextualStrings_, duration, std::move(onUpdate));
}

/// None means that the session was cancelled meanwhile.
Async<std::optional<QString>>
SpeechTranscriber::transcribeInChunks(std::shared_ptr<AudioRecording> recording,
                                      std::shared_ptr<SpeechRecognizer> recognizer, double duration,
                                      QUuid session, QStringList *problems) {
    const std::stop_token cancellation = co_await currentCancellation;
    const Self self(this);
    const QList<AudioChunk> plan = AudioChunk::plan(duration);
    ChunkTranscriptAssembly assembly;
    for (const AudioChunk &chunk : plan) {
        if (isStale(self, session, cancellation))
            co_return std::nullopt;
        const QString part = QString::number(chunk.index + 1);
        publish(processingMessage_, u"Transcribing part %1 of %2…"_s.arg(part).arg(plan.size()));

        const auto cut = [&files = ports_.audioFile, recording, chunk] {
            return AudioRecording::writeChunk(files, recording->url, chunk, recording->directory);
        };
        QString url;
        try {
            url = co_await inBackground(ports_.clock, cut);
        } catch (const LocalizedError &error) {
            problems->append(u"Part "_s + part + u": "_s + error.localizedDescription());
            continue;
        }
        if (isStale(self, session, cancellation))
            co_return std::nullopt;

        const auto recognition = FileSpeechRecognition::make(ports_.clock);
        fileRecognition_ = recognition;
        const SpeechContext context{chunk.coreStart - chunk.start, chunk.end - chunk.coreEnd,
                                    wordsFrom(chunk.start, assembly.words())};
        const FileSpeechRecognition::Result result =
            co_await recognition->recognize(url, recognizer, contextualStrings_, context);
        if (isStale(self, session, cancellation))
            co_return std::nullopt;
        fileRecognition_.reset();
        if (result.error)
            problems->append(u"Part "_s + part + u": "_s + *result.error);
        assembly.append(shifted(result.words, chunk.start));
        publish(transcript_, assembly.text());
        QFile::remove(url);
    }
    co_return assembly.text();
}

/// The audio goes in a later turn: whoever waits for the text has it on disk by then.
void SpeechTranscriber::confirm(const std::shared_ptr<AudioRecording> &recording) {
    confirmed_ = recording;
    ports_.clock.post([self = Self(this)] {
        if (self)
            self->removeConfirmed();
    });
    publish(processingMessage_, u"Transcription complete"_s);
}

void SpeechTranscriber::removeConfirmed() {
    const auto recording = std::exchange(confirmed_, nullptr);
    if (recording && !remove(*recording))
        publish(errorMessage_,
                u"Transcription is complete, but the temporary audio could not be removed: "_s +
                    recording->url);
}

void SpeechTranscriber::keepForRecovery(const AudioRecording &recording,
                                        const QStringList &problems) {
    publish(recoveryAudioURL_, recording.url);
    publish(errorMessage_,
            u"The complete transcription could not be confirmed. Automatic paste was "
            "skipped. Your original audio is saved at "_s +
                recording.url + u". "_s + problems.join(u' '));
    publish(processingMessage_, u"Recording kept for recovery"_s);
}

} // namespace lorvane
