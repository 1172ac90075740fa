#pragma once

#include "Core/TranscriptAssembly.h"
#include "Platform/Audio.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace lorvane {

/// One recognised word, with its place in the formatted string of its result.
struct SpeechSegment {
    qsizetype location = 0; ///< in UTF-16 units from the start of the formatted string
    QString substring;
    double timestamp = 0; ///< in seconds from the start of the request's audio
    double duration = 0;  ///< in seconds
};

/// A whole snapshot of what a request has heard so far.
struct SpeechResult {
    QString formattedString;
    QList<SpeechSegment> segments;
    bool isFinal = false;
};

/// How much of a request's audio, in seconds at either end, is a neighbouring piece's too and is
/// there to be listened to, not to be written down: 0 where the recording itself ends.
struct SpeechContext {
    double before = 0;
    double after = 0;
    /// What has been written down already, with times from the start of the request's audio.
    QList<TranscribedWord> written;
};

struct SpeechOptions {
    bool reportPartialResults = true;
    QStringList contextualStrings; ///< phrases to listen for
    bool requiresOnDeviceRecognition = true;
    SpeechContext context; ///< of a file request
};

/// Called on a thread of the recogniser's, any number of times, with a result, an error text fit to
/// show, or both. It may still be called shortly after `SpeechTask::cancel`.
using SpeechHandler =
    std::function<void(const std::optional<SpeechResult> &, const std::optional<QString> &error)>;

/// A running recognition. Destroying it cancels it. Main thread only.
class SpeechTask {
public:
    SpeechTask() = default;
    SpeechTask(const SpeechTask &) = delete;
    SpeechTask &operator=(const SpeechTask &) = delete;
    virtual ~SpeechTask() = default;

    /// Abandons the recognition within 100 milliseconds; does not wait for that.
    virtual void cancel() = 0;
};

/// A stream of live audio for a recogniser.
class SpeechBufferRequest {
public:
    SpeechBufferRequest() = default;
    SpeechBufferRequest(const SpeechBufferRequest &) = delete;
    SpeechBufferRequest &operator=(const SpeechBufferRequest &) = delete;
    virtual ~SpeechBufferRequest() = default;

    /// Takes a buffer: cheap, without allocation, from the audio thread. What comes when the
    /// request is over is dropped.
    virtual void append(const AudioBuffer &buffer) = 0;
};

/// The recogniser of one language. Main thread only.
class SpeechRecognizer {
public:
    SpeechRecognizer() = default;
    SpeechRecognizer(const SpeechRecognizer &) = delete;
    SpeechRecognizer &operator=(const SpeechRecognizer &) = delete;
    virtual ~SpeechRecognizer() = default;

    virtual QString localeIdentifier() const = 0;
    virtual bool isAvailable() const = 0;
    virtual bool supportsOnDeviceRecognition() const = 0;

    /// A request for live audio of `format`, to be given to `recognize`.
    virtual std::shared_ptr<SpeechBufferRequest>
    makeBufferRequest(const AudioFormat &format, const SpeechOptions &options) = 0;

    /// Recognises live audio until the task is cancelled.
    virtual std::unique_ptr<SpeechTask> recognize(std::shared_ptr<SpeechBufferRequest> request,
                                                  SpeechHandler handler) = 0;

    /// Recognises a finished file of at most about 35 seconds.
    virtual std::unique_ptr<SpeechTask> recognize(const QString &path, const SpeechOptions &options,
                                                  SpeechHandler handler) = 0;
};

/// One stretch of a file as an analyser heard it; a final one never changes any more.
struct SpeechAnalysisResult {
    QString text;
    double start = 0;    ///< in seconds from the start of the file
    double duration = 0; ///< in seconds
    bool isFinal = false;
};

/// The analysis of one whole file, of any length. Destroying it abandons it. Main thread only.
class SpeechAnalyzer {
public:
    /// Called on a thread of the recogniser's, in the order of the recording.
    using OnResult = std::function<void(const SpeechAnalysisResult &)>;
    /// Called on any thread, once, when no result follows: with an error text fit to show when the
    /// file could not be heard to its end, with none when it was, or was abandoned.
    using OnEnd = std::function<void(const std::optional<QString> &error)>;

    SpeechAnalyzer() = default;
    SpeechAnalyzer(const SpeechAnalyzer &) = delete;
    SpeechAnalyzer &operator=(const SpeechAnalyzer &) = delete;
    virtual ~SpeechAnalyzer() = default;

    /// Begins to analyse the file at `path`; at most once. Returns at once.
    virtual void start(const QString &path, OnResult onResult, OnEnd onEnd) = 0;

    /// Ends the results at once, and tells so before it returns; the analysis itself is abandoned
    /// within 100 milliseconds, or when a model that is just being loaded has been.
    virtual void cancelAndFinishNow() = 0;
};

/// Makes recognisers. Main thread only.
class Speech {
public:
    Speech() = default;
    Speech(const Speech &) = delete;
    Speech &operator=(const Speech &) = delete;
    virtual ~Speech() = default;

    /// The recogniser for a locale such as "en-AU", or none when there is none for its language.
    virtual std::shared_ptr<SpeechRecognizer> makeRecognizer(const QString &localeIdentifier) = 0;

    /// An analyser for a locale that listens for some phrases, or none where no model that could
    /// analyse whole files is installed for its language. Nothing is ever downloaded.
    virtual std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &localeIdentifier,
                                                         const QStringList &contextualStrings) = 0;

    /// Follows the recording that is being written to `path`: what later audio can't change of its
    /// analysis is done already, in the time that the live text leaves, for an analyser of the same
    /// locale and phrases that is started with that path. It hears the same with it and without it.
    /// None where there is no analyser. One recording at a time; destroying the task ends it.
    virtual std::unique_ptr<SpeechTask> followRecording(const QString &path,
                                                        const QString &localeIdentifier,
                                                        const QStringList &contextualStrings) = 0;
};

} // namespace lorvane
