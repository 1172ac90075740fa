#pragma once

#include "Speech/KeptEngine.h"

#include <functional>
#include <future>
#include <memory>

namespace lorvane {

/// What was heard, and when, where that is known.
struct Heard {
    QString text;
    QList<TimedWord> words;
};

/// The models of one size on so many threads, by one way from the audio to the text.
class Route {
public:
    Route(const ModelFolder &folder, const QString &voiceActivity, QString size, int threads)
        : size_(std::move(size)),
          runtime_(threads),
          engine_(std::make_shared<KeptEngine>(
              std::make_unique<SpeechEngine>(runtime_, folder, voiceActivity), size_, worker_)) {}
    Route(const Route &) = delete;
    Route &operator=(const Route &) = delete;
    virtual ~Route() = default;

    void load() {
        onWorker([this] { engine_->use().load(size_); });
    }

    Heard hear(const std::vector<float> &samples, const QStringList &phrases) {
        Heard heard;
        onWorker([&] { heard = hearOnWorker(samples, phrases); });
        return heard;
    }

protected:
    virtual Heard hearOnWorker(const std::vector<float> &samples, const QStringList &phrases) = 0;

    QList<TimedWord> recognize(std::span<const float> samples, const QStringList &phrases,
                               const SpeechContext &context = {}) {
        SpeechOptions options;
        options.contextualStrings = phrases;
        options.context = context;
        return engine_->use().recognize(samples, size_, options, {});
    }
    const std::shared_ptr<KeptEngine> &engine() const { return engine_; }

private:
    void onWorker(const std::function<void()> &work) {
        std::promise<void> done;
        worker_.post([&](std::stop_source &) {
            try {
                work();
                done.set_value();
            } catch (...) {
                done.set_exception(std::current_exception());
            }
        });
        done.get_future().get();
    }

    const QString size_;
    OnnxRuntime runtime_;
    Turns turns_{1};
    RecognitionWorker worker_{turns_, Urgency::ahead};
    const std::shared_ptr<KeptEngine> engine_;
};

/// "whole", a recording as a whole, cut where the model has to have it cut; "analyser", the
/// analysis of a file; or "chunks", chunks that overlap, joined by their words.
std::unique_ptr<Route> makeRoute(const QString &name, const ModelFolder &folder,
                                 const QString &voiceActivity, const QString &size, int threads);

} // namespace lorvane
