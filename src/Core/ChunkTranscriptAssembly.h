#pragma once

#include "Core/TranscriptAssembly.h"

namespace lorvane {

/// Stitches the words of overlapping chunks together, without those that were heard twice at a
/// seam.
class ChunkTranscriptAssembly {
public:
    /// In recording time, by start.
    const QList<TranscribedWord> &words() const { return words_; }

    /// Takes the words of the next chunk in plan order, already in recording time. Of a word that
    /// both chunks hold, the earlier chunk's copy stays.
    void append(const QList<TranscribedWord> &incoming);

    QString text() const { return TranscriptAssembly::render(words_); }

private:
    QList<TranscribedWord> words_;
};

} // namespace lorvane
