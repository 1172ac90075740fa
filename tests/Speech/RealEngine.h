#pragma once

#include "Speech/KeptEngine.h"

#include <gtest/gtest.h>

#include <QDir>

#include <future>

namespace lorvane {

/// A worker with the real models, on a clock of the test's.
class RealEngine {
public:
    explicit RealEngine(const QString &size)
        : engine(std::make_shared<KeptEngine>(makeEngine(), size, worker)) {}

    /// Runs `work` on the worker, after what is due in the background.
    void run(const std::function<void(const std::stop_token &)> &work) {
        // What is due in the background comes before a job that is due at the same time.
        std::promise<void> done;
        worker.postInBackground(worker.now(), [&](std::stop_source &stop) {
            work(stop.get_token());
            done.set_value();
        });
        done.get_future().wait();
    }
    /// Lets so much time pass on the worker, and waits for what becomes due.
    void pass(std::chrono::seconds time) {
        past_ = past_.load() + time;
        // Wakes it up; a job in front would interrupt what has been woken up already.
        worker.postInBackground({}, [](std::stop_source &) {});
        run([](const std::stop_token &) {});
    }

private:
    std::unique_ptr<SpeechEngine> makeEngine() {
        const QDir models(QStringLiteral(LORVANE_MODELS));
        return std::make_unique<SpeechEngine>(
            runtime_, *ModelFolder::find(models.path(), QStringLiteral("en")),
            models.filePath(QStringLiteral("vad/silero.onnx")));
    }

    OnnxRuntime runtime_{1};
    Turns turns_{1};
    const RecognitionWorker::TimePoint start_ = RecognitionWorker::TimePoint::clock::now();
    std::atomic<std::chrono::seconds> past_{std::chrono::seconds(0)};

public:
    RecognitionWorker worker{turns_, Urgency::ahead, [this] { return start_ + past_.load(); }};
    const std::shared_ptr<KeptEngine> engine;
};

} // namespace lorvane
