#include "Services/FileSpeechRecognition.h"

#include "Core/Text.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {

namespace {

constexpr auto deadline = 120s;

QString cancelledText() { return u"Transcription cancelled."_s; }

} // namespace

Async<FileSpeechRecognition::Result>
FileSpeechRecognition::recognize(QString url, std::shared_ptr<SpeechRecognizer> recognizer,
                                 QStringList contextualStrings, SpeechContext context) {
    const std::stop_token cancellation = co_await currentCancellation;
    if (cancellation.stop_requested()) {
        Result cancelled{{}, cancelledText()};
        co_return cancelled;
    }

    SpeechOptions options;
    options.reportPartialResults = false;
    options.contextualStrings = contextualStrings;
    options.requiresOnDeviceRecognition = recognizer->supportsOnDeviceRecognition();
    options.context = context;

    assembly_ = TranscriptAssembly();
    operationID_ = QUuid::createUuid();
    const QUuid operation = operationID_;

    const std::weak_ptr<FileSpeechRecognition> self = weak_from_this();
    const std::stop_callback onCancel(cancellation, [self, &clock = clock_] {
        clock.post([self] {
            if (const auto recognition = self.lock())
                recognition->cancel();
        });
    });
    Result result = co_await suspend<Result>(clock_, [&](Continuation<Result> caller) {
        continuation_ = std::move(caller);
        task_ = recognizer->recognize(url, options, resultHandler(operation));
        deadline_ = Task<>::run(runDeadline(clock_, self, operation));
    });
    co_return result;
}

void FileSpeechRecognition::cancel() { finish(cancelledText()); }

SpeechHandler FileSpeechRecognition::resultHandler(const QUuid &operation) {
    return [self = weak_from_this(), &clock = clock_, operation](
               const std::optional<SpeechResult> &result, const std::optional<QString> &error) {
        std::optional<QList<TranscribedWord>> heard;
        if (result)
            heard = words(*result);
        const bool isFinal = result && result->isFinal;
        clock.post([self, operation, heard, isFinal, error] {
            const auto recognition = self.lock();
            if (recognition && recognition->operationID_ == operation)
                recognition->receive(heard, isFinal, error);
        });
    };
}

void FileSpeechRecognition::receive(const std::optional<QList<TranscribedWord>> &words,
                                    bool isFinal, const std::optional<QString> &message) {
    if (words)
        assembly_.replaceSnapshot(*words);
    if (isFinal)
        finish(std::nullopt);
    else if (message)
        finish(message);
}

Async<> FileSpeechRecognition::runDeadline(Clock &clock,
                                           std::weak_ptr<FileSpeechRecognition> recognition,
                                           QUuid operation) {
    co_await sleep(clock, deadline);
    const std::stop_token cancellation = co_await currentCancellation;
    if (cancellation.stop_requested())
        co_return;
    const auto self = recognition.lock();
    if (self && self->operationID_ == operation)
        self->finish(u"Recognition timed out before a complete result was available."_s);
}

void FileSpeechRecognition::finish(const std::optional<QString> &error) {
    operationID_ = QUuid::createUuid();
    deadline_.cancel();
    deadline_ = {};
    if (const auto task = std::exchange(task_, nullptr))
        task->cancel();
    // Taken out before it is resumed: only the first of several enders counts.
    if (const auto caller = std::exchange(continuation_, std::nullopt))
        caller->resume({assembly_.words(), error});
}

QList<TranscribedWord> FileSpeechRecognition::words(const SpeechResult &result) {
    QList<TranscribedWord> words;
    words.reserve(result.segments.size());
    const QString &formatted = result.formattedString;
    for (qsizetype i = 0; i < result.segments.size(); ++i) {
        const SpeechSegment &segment = result.segments[i];
        const qsizetype start = segment.location;
        const qsizetype end =
            i + 1 < result.segments.size() ? result.segments[i + 1].location : formatted.size();
        const bool fits = start >= 0 && end >= start && end <= formatted.size();
        words.append({fits ? Text::trimmed(formatted.mid(start, end - start)) : segment.substring,
                      segment.timestamp, segment.duration});
    }
    return words;
}

} // namespace lorvane
