#include "Core/TranscriptDisplay.h"

namespace lorvane {

QString TranscriptDisplay::text(const QString &livePreview) const {
    return finalText_.value_or(livePreview);
}

bool TranscriptDisplay::hasFinalText() const { return finalText_ && !finalText_->isEmpty(); }

void TranscriptDisplay::reset() { finalText_ = QString(); }

void TranscriptDisplay::showLivePreview() { finalText_.reset(); }

void TranscriptDisplay::finish(const QString &text) { finalText_ = text; }

} // namespace lorvane
