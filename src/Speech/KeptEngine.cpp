#include "Speech/KeptEngine.h"

#include <malloc.h>

namespace lorvane {

KeptEngine::KeptEngine(std::unique_ptr<SpeechEngine> engine, QString size,
                       RecognitionWorker &worker)
    : engine_(std::move(engine)), size_(std::move(size)), worker_(worker) {}

SpeechEngine &KeptEngine::use() {
    lastUse_ = worker_.now();
    for (Rest &rest : rests_) {
        if (!rest.isAwaited)
            await(rest);
    }
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

void KeptEngine::await(Rest &rest) {
    rest.isAwaited = true;
    worker_.postInBackground(lastUse_ + rest.length,
                             [weak = weak_from_this(), &rest](std::stop_source &) {
                                 if (const auto self = weak.lock())
                                     self->endRest(rest);
                             });
}

void KeptEngine::endRest(Rest &rest) {
    rest.isAwaited = false;
    if (worker_.now() < lastUse_ + rest.length)
        await(rest);
    else
        (this->*rest.act)();
}

/// The C library keeps freed memory otherwise, in pieces that a longer recording can't use.
void KeptEngine::trim() { malloc_trim(0); }

void KeptEngine::unload() {
    engine_->unload();
    trim();
}

} // namespace lorvane
