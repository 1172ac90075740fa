#pragma once

#include "Platform/Speech.h"

#include <cassert>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace lorvane {

/// A recogniser that hears what the test says. Results are delivered by hand, on the thread that
/// calls `give` or `fail`, and also after a cancel, as a real recogniser may do.
class FakeSpeech : public Speech {
public:
    /// One recognition, live or of a file, as the program asked for it. It stays when it is over.
    class Request {
    public:
        bool isLive = false;
        QString localeIdentifier;
        QString path;       ///< of a file request
        AudioFormat format; ///< of a live request
        SpeechOptions options;
        bool isCancelled = false; ///< by `cancel` or because its task is gone

        void give(const SpeechResult &result) const { deliver(result, {}); }
        void fail(const QString &error) const { deliver({}, error); }
        /// A callback that carries both.
        void giveAndFail(const SpeechResult &result, const QString &error) const {
            deliver(result, error);
        }

        /// The buffers that a live request was given, interleaved, in order. Any thread.
        std::vector<std::vector<float>> buffers() const {
            const std::lock_guard lock(mutex_);
            return buffers_;
        }

    private:
        friend class FakeSpeech;

        void deliver(const std::optional<SpeechResult> &result,
                     const std::optional<QString> &error) const {
            const SpeechHandler handler = handler_;
            assert(handler); // a live request that nobody has given to `recognize`
            handler(result, error);
        }

        SpeechHandler handler_;
        mutable std::mutex mutex_;
        std::vector<std::vector<float>> buffers_;
    };

    /// One analysis of a whole file, as the program asked for it. It stays when it is over.
    class Analysis {
    public:
        QString localeIdentifier;
        QStringList contextualStrings;
        QString path;             ///< null until it is started
        bool isCancelled = false; ///< by `cancelAndFinishNow` or because its analyser is gone
        bool isDeaf = false;      ///< does not end when it is cancelled

        void give(const QString &text, double start, double duration, bool isFinal = true) const {
            onResult_({text, start, duration, isFinal});
        }
        void end() { finish({}); }
        void fail(const QString &error) { finish(error); }

    private:
        friend class FakeSpeech;

        void finish(const std::optional<QString> &error) {
            if (const auto onEnd = std::exchange(onEnd_, nullptr))
                onEnd(error);
        }
        void cancel() {
            isCancelled = true;
            if (!isDeaf)
                end();
        }

        SpeechAnalyzer::OnResult onResult_;
        SpeechAnalyzer::OnEnd onEnd_;
    };

    /// One recording that the program had followed.
    struct Following {
        QString path;
        QString localeIdentifier;
        QStringList contextualStrings;
        bool isCancelled = false; ///< by `cancel` or because its task is gone
    };

    using RequestPointer = std::shared_ptr<Request>;
    using AnalysisPointer = std::shared_ptr<Analysis>;

    /// A result of the words of `text`, `secondsPerWord` each, the first at `start`.
    static SpeechResult result(const QString &text, bool isFinal, double start = 0,
                               double secondsPerWord = 0.5) {
        SpeechResult made{text, {}, isFinal};
        qsizetype location = 0;
        for (const QString &word : text.split(u' ')) {
            if (!word.isEmpty()) {
                made.segments.append({location, word, start, secondsPerWord});
                start += secondsPerWord;
            }
            location += word.size() + 1;
        }
        return made;
    }

    // What the next recogniser and its questions find.
    QStringList languages{QStringLiteral("en")}; ///< those that have a recogniser
    bool isAvailable = true;
    bool supportsOnDeviceRecognition = true;
    bool hasAnalyzer = false; ///< whether a model for whole files is installed
    /// Called at the start of a recognition, for a recogniser that answers at once.
    std::function<void(const RequestPointer &)> onRecognize;
    std::function<void(const AnalysisPointer &)> onAnalyze; ///< the same for an analysis

    // What was asked, in order.
    QStringList requestedLocales;
    std::vector<RequestPointer> requests; ///< those given to `recognize`
    std::vector<AnalysisPointer> analyses;
    std::vector<std::shared_ptr<Following>> followings;

    std::vector<RequestPointer> liveRequests() const { return select(true); }
    std::vector<RequestPointer> fileRequests() const { return select(false); }

    std::shared_ptr<SpeechRecognizer> makeRecognizer(const QString &localeIdentifier) override {
        requestedLocales.append(localeIdentifier);
        const QString language = localeIdentifier.section(u'-', 0, 0).section(u'_', 0, 0);
        if (!languages.contains(language))
            return nullptr;
        return std::make_shared<Recognizer>(*this, localeIdentifier);
    }

    std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &localeIdentifier,
                                                 const QStringList &contextualStrings) override {
        if (!hasAnalyzer)
            return nullptr;
        analyses.push_back(std::make_shared<Analysis>());
        analyses.back()->localeIdentifier = localeIdentifier;
        analyses.back()->contextualStrings = contextualStrings;
        return std::make_unique<Analyzer>(*this, analyses.back());
    }

    std::unique_ptr<SpeechTask> followRecording(const QString &path,
                                                const QString &localeIdentifier,
                                                const QStringList &contextualStrings) override {
        if (!hasAnalyzer)
            return nullptr;
        followings.push_back(
            std::make_shared<Following>(Following{path, localeIdentifier, contextualStrings}));
        return std::make_unique<RunningTask<Following>>(followings.back());
    }

private:
    class BufferRequest : public SpeechBufferRequest {
    public:
        explicit BufferRequest(RequestPointer request) : request_(std::move(request)) {}

        void append(const AudioBuffer &buffer) override {
            const qsizetype count = buffer.frameCount * buffer.channelCount;
            const std::lock_guard lock(request_->mutex_);
            request_->buffers_.emplace_back(buffer.samples, buffer.samples + count);
        }
        const RequestPointer &request() const { return request_; }

    private:
        RequestPointer request_;
    };

    template <class Running>
    class RunningTask : public SpeechTask {
    public:
        explicit RunningTask(std::shared_ptr<Running> request) : request_(std::move(request)) {}
        ~RunningTask() override { request_->isCancelled = true; }
        void cancel() override { request_->isCancelled = true; }

    private:
        std::shared_ptr<Running> request_;
    };

    class Analyzer : public SpeechAnalyzer {
    public:
        Analyzer(FakeSpeech &speech, AnalysisPointer analysis)
            : speech_(speech), analysis_(std::move(analysis)) {}
        ~Analyzer() override { analysis_->cancel(); }

        void start(const QString &path, OnResult onResult, OnEnd onEnd) override {
            analysis_->path = path;
            analysis_->onResult_ = std::move(onResult);
            analysis_->onEnd_ = std::move(onEnd);
            if (speech_.onAnalyze)
                speech_.onAnalyze(analysis_);
        }
        void cancelAndFinishNow() override { analysis_->cancel(); }

    private:
        FakeSpeech &speech_;
        AnalysisPointer analysis_;
    };

    class Recognizer : public SpeechRecognizer {
    public:
        Recognizer(FakeSpeech &speech, QString localeIdentifier)
            : speech_(speech), localeIdentifier_(std::move(localeIdentifier)) {}

        QString localeIdentifier() const override { return localeIdentifier_; }
        bool isAvailable() const override { return speech_.isAvailable; }
        bool supportsOnDeviceRecognition() const override {
            return speech_.supportsOnDeviceRecognition;
        }

        std::shared_ptr<SpeechBufferRequest>
        makeBufferRequest(const AudioFormat &format, const SpeechOptions &options) override {
            const auto request = std::make_shared<Request>();
            request->isLive = true;
            request->localeIdentifier = localeIdentifier_;
            request->format = format;
            request->options = options;
            return std::make_shared<BufferRequest>(request);
        }

        std::unique_ptr<SpeechTask> recognize(std::shared_ptr<SpeechBufferRequest> request,
                                              SpeechHandler handler) override {
            return start(static_cast<BufferRequest &>(*request).request(), std::move(handler));
        }

        std::unique_ptr<SpeechTask> recognize(const QString &path, const SpeechOptions &options,
                                              SpeechHandler handler) override {
            const auto request = std::make_shared<Request>();
            request->localeIdentifier = localeIdentifier_;
            request->path = path;
            request->options = options;
            return start(request, std::move(handler));
        }

    private:
        std::unique_ptr<SpeechTask> start(const RequestPointer &request, SpeechHandler handler) {
            request->handler_ = std::move(handler);
            speech_.requests.push_back(request);
            auto task = std::make_unique<RunningTask<Request>>(request);
            if (speech_.onRecognize)
                speech_.onRecognize(request);
            return task;
        }

        FakeSpeech &speech_;
        QString localeIdentifier_;
    };

    std::vector<RequestPointer> select(bool isLive) const {
        std::vector<RequestPointer> selected;
        for (const RequestPointer &request : requests) {
            if (request->isLive == isLive)
                selected.push_back(request);
        }
        return selected;
    }
};

} // namespace lorvane
