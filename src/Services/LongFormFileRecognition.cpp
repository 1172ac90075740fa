#include "Services/LongFormFileRecognition.h"

#include "Core/Text.h"
#include "Core/TranscriptAssembly.h"
#include "Services/TranscriptionError.h"

#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace lorvane::LongFormFileRecognition {

namespace {

constexpr double shortestWatch = 120; // seconds
constexpr double watchPerSecond = 3;

/// One file at one analyser, and the caller who waits for its text. What comes when it is over, or
/// when it has gone, changes nothing.
class Analysis : public std::enable_shared_from_this<Analysis> {
public:
    struct Outcome {
        QString text;
        std::optional<QString> error;
    };

    Analysis(Clock &clock, std::unique_ptr<SpeechAnalyzer> analyzer, OnUpdate onUpdate)
        : clock_(clock), analyzer_(std::move(analyzer)), onUpdate_(std::move(onUpdate)) {}

    void start(const QString &url, Continuation<Outcome> caller) {
        caller_ = std::move(caller);
        analyzer_->start(
            url,
            [self = weak_from_this(), &clock = clock_](const SpeechAnalysisResult &result) {
                if (!result.isFinal)
                    return;
                const TranscribedWord segment{Text::trimmed(result.text), result.start,
                                              result.duration};
                clock.post([self, segment] {
                    if (const auto analysis = self.lock())
                        analysis->receive(segment);
                });
            },
            [self = weak_from_this(), &clock = clock_](const std::optional<QString> &error) {
                clock.post([self, error] {
                    if (const auto analysis = self.lock())
                        analysis->finish(error);
                });
            });
    }

    /// An abandoned analyser ends its results as a finished one does, so the error comes first.
    void abandon(const QString &error) {
        finish(error);
        analyzer_->cancelAndFinishNow();
    }

private:
    void receive(const TranscribedWord &segment) {
        if (!caller_ || segment.text.isEmpty())
            return;
        assembly_.update({segment});
        onUpdate_(assembly_.text());
    }

    /// Taken out before it is resumed: only the first of several enders counts.
    void finish(const std::optional<QString> &error) {
        if (const auto caller = std::exchange(caller_, std::nullopt))
            caller->resume({assembly_.text(), error});
    }

    Clock &clock_;
    std::unique_ptr<SpeechAnalyzer> analyzer_;
    OnUpdate onUpdate_;
    std::optional<Continuation<Outcome>> caller_;
    TranscriptAssembly assembly_;
};

/// An analysis that doesn't end by itself is abandoned: its text is not whole.
Async<> watch(Clock &clock, std::weak_ptr<Analysis> watched, double duration) {
    const std::chrono::seconds limit(
        static_cast<qint64>(std::max(shortestWatch, duration * watchPerSecond)));
    co_await sleep(clock, limit);
    const std::stop_token cancellation = co_await currentCancellation;
    if (cancellation.stop_requested())
        co_return;
    if (const auto analysis = watched.lock())
        analysis->abandon(u"Recognition timed out before a complete result was available."_s);
}

} // namespace

Async<std::optional<QString>> recognizeIfInstalled(Clock &clock, Speech &speech, QString url,
                                                   QString localeIdentifier,
                                                   QStringList contextualStrings, double duration,
                                                   OnUpdate onUpdate) {
    const std::stop_token cancellation = co_await currentCancellation;
    auto analyzer = speech.makeAnalyzer(localeIdentifier, contextualStrings);
    if (!analyzer)
        co_return std::nullopt;
    const TranscriptionError cancelled(TranscriptionError::Kind::cancelled);
    if (cancellation.stop_requested())
        throw cancelled;

    const auto analysis =
        std::make_shared<Analysis>(clock, std::move(analyzer), std::move(onUpdate));
    const Task<> watchdog = Task<>::run(watch(clock, analysis, duration));
    const auto endWatch = qScopeGuard([&] { watchdog.cancel(); });
    const std::stop_callback onCancel(cancellation,
                                      [&] { analysis->abandon(cancelled.localizedDescription()); });
    const Analysis::Outcome outcome =
        co_await suspend<Analysis::Outcome>(clock, [&](Continuation<Analysis::Outcome> caller) {
            analysis->start(url, std::move(caller));
        });
    if (cancellation.stop_requested())
        throw cancelled;
    if (outcome.error)
        throw LocalizedError(*outcome.error);
    co_return outcome.text;
}

} // namespace lorvane::LongFormFileRecognition
