// The live text while the user speaks. It is a preview only: it may fail in any way without harm,
// so it has no error path.

#include "Services/SpeechTranscriber.h"

using namespace std::chrono_literals;

namespace lorvane {

namespace {

constexpr auto rotationInterval = 30s;
constexpr auto restartDelay = 300ms;

} // namespace

void SpeechTranscriber::startLivePreview() {
    if (!isRecording_ || !recognizer_ || !capture_)
        return;
    stopLivePreview();
    liveID_ = QUuid::createUuid();
    liveEnded_ = false;

    SpeechOptions options;
    options.contextualStrings = contextualStrings_;
    options.requiresOnDeviceRecognition = recognizer_->supportsOnDeviceRecognition();
    const auto request = recognizer_->makeBufferRequest(capture_->format, options);
    capture_->setLiveRequest(request);
    liveTask_ = recognizer_->recognize(request, liveHandler(liveID_));
    schedulePreviewRestart(rotationInterval);
}

void SpeechTranscriber::stopLivePreview() {
    liveID_ = QUuid::createUuid();
    if (capture_)
        capture_->setLiveRequest(nullptr);
    std::exchange(liveRotation_, {}).cancel();
    if (const auto task = std::exchange(liveTask_, nullptr))
        task->cancel();
}

SpeechHandler SpeechTranscriber::liveHandler(const QUuid &live) {
    return [self = Self(this), live, &clock = ports_.clock](
               const std::optional<SpeechResult> &result, const std::optional<QString> &error) {
        std::optional<QList<TranscribedWord>> words;
        if (result)
            words = FileSpeechRecognition::words(*result);
        const bool ended = error || (result && result->isFinal);
        clock.post([self, live, words, ended] {
            if (self && self->liveID_ == live)
                self->receiveLive(words, ended);
        });
    };
}

void SpeechTranscriber::receiveLive(const std::optional<QList<TranscribedWord>> &words,
                                    bool ended) {
    if (liveEnded_ || !isRecording_)
        return;
    if (words) {
        liveAssembly_.replaceSnapshot(*words);
        QStringList texts = liveCommitted_;
        texts.append(liveAssembly_.text());
        texts.removeAll(QString());
        publish(transcript_, texts.join(u' '));
    }
    if (ended) {
        liveEnded_ = true;
        schedulePreviewRestart(restartDelay);
    }
}

void SpeechTranscriber::schedulePreviewRestart(std::chrono::nanoseconds delay) {
    liveRotation_.cancel();
    liveRotation_ = Task<>::run(restartPreview(delay, liveID_));
}

Async<> SpeechTranscriber::restartPreview(std::chrono::nanoseconds delay, QUuid live) {
    const std::stop_token cancellation = co_await currentCancellation;
    const Self self(this);
    co_await sleep(ports_.clock, delay);
    if (cancellation.stop_requested() || !self || liveID_ != live || !isRecording_)
        co_return;
    if (const QString text = liveAssembly_.text(); !text.isEmpty())
        liveCommitted_.append(text);
    liveAssembly_ = TranscriptAssembly();
    startLivePreview();
}

} // namespace lorvane
