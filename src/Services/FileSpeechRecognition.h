#pragma once

#include "Core/TranscriptAssembly.h"
#include "Platform/Speech.h"
#include "Platform/Task.h"

#include <QUuid>

#include <memory>
#include <optional>

namespace lorvane {

/// Turns one short audio file into timed words and always comes back with an answer, whichever of
/// the final result, the recogniser's error, the deadline and a cancellation comes first. One
/// instance serves one recognition at a time; dropping it makes late callbacks harmless. Main
/// thread only.
class FileSpeechRecognition : public std::enable_shared_from_this<FileSpeechRecognition> {
public:
    struct Result {
        QList<TranscribedWord> words; ///< perhaps partial when `error` is set
        std::optional<QString> error; ///< why the result is not complete, fit to show
    };

    static std::shared_ptr<FileSpeechRecognition> make(Clock &clock) {
        return std::shared_ptr<FileSpeechRecognition>(new FileSpeechRecognition(clock));
    }

    /// Never throws. A cancelled caller gets the words so far.
    Async<Result> recognize(QString url, std::shared_ptr<SpeechRecognizer> recognizer,
                            QStringList contextualStrings, SpeechContext context);

    /// Ends the current operation.
    void cancel();

    /// Each word reaches to the start of the next, so that punctuation stays with the word before
    /// it. Any thread.
    static QList<TranscribedWord> words(const SpeechResult &result);

private:
    explicit FileSpeechRecognition(Clock &clock) : clock_(clock) {}

    SpeechHandler resultHandler(const QUuid &operation);
    void receive(const std::optional<QList<TranscribedWord>> &words, bool isFinal,
                 const std::optional<QString> &message);
    static Async<> runDeadline(Clock &clock, std::weak_ptr<FileSpeechRecognition> recognition,
                               QUuid operation);
    void finish(const std::optional<QString> &error);

    Clock &clock_;
    std::unique_ptr<SpeechTask> task_;
    Task<> deadline_;
    std::optional<Continuation<Result>> continuation_;
    TranscriptAssembly assembly_;
    QUuid operationID_ = QUuid::createUuid();
};

} // namespace lorvane
