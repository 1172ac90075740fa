#include "Speech/KeptEngine.h"

#include <malloc.h>

namespace lorvane {

KeptEngine::KeptEngine(std::unique_ptr<SpeechEngine> engine, QString size,
                       RecognitionWorker &worker)
    : engine_(std::move(engine)), size_(std::move(size)), worker_(worker) {}

SpeechEngine &KeptEngine::use() {
    lastUse_ = worker_.now();
    if (!isWatched_)
        watch(lastUse_ + longestIdle);
    return *engine_;
}

void KeptEngine::loadInBackground() {
    // The earliest of all times: before any other work in the background.
    worker_.postInBackground({}, [self = shared_from_this()](std::stop_source &) {
        try {
            self->use().load(self->size_);
        } catch (const std::exception &) {
            // The first recognition tries again, and tells.
        }
    });
}

void KeptEngine::watch(RecognitionWorker::TimePoint time) {
    isWatched_ = true;
    worker_.postInBackground(time, [self = weak_from_this()](std::stop_source &) {
        if (const auto engine = self.lock())
            engine->unloadIfIdle();
    });
}

void KeptEngine::unloadIfIdle() {
    isWatched_ = false;
    if (worker_.now() < lastUse_ + longestIdle) {
        watch(lastUse_ + longestIdle);
        return;
    }
    engine_->unload();
    malloc_trim(0); // the C library keeps freed memory otherwise
}

} // namespace lorvane
