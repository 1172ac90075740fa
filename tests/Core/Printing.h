#pragma once

#include "Core/AudioChunk.h"
#include "Core/Models.h"
#include "Core/TranscriptAssembly.h"

#include <QDebug>

#include <gtest/gtest.h>

#include <ostream>

// How GoogleTest shows our values when a comparison fails.

inline void PrintTo(const QString &text, std::ostream *out) {
    QString shown;
    QDebug(&shown).nospace() << text;
    *out << shown.toStdString();
}

namespace lorvane {

inline void PrintTo(const TranscribedWord &word, std::ostream *out) {
    *out << word.text.toStdString() << " at " << word.start << " for " << word.duration;
}

inline void PrintTo(const AudioChunk &chunk, std::ostream *out) {
    *out << chunk.index << ": " << chunk.start << " to " << chunk.end << ", core "
         << chunk.coreStart << " to " << chunk.coreEnd;
}

inline void PrintTo(const VocabularyEntry &entry, std::ostream *out) {
    QString shown;
    QDebug(&shown) << entry.phrase << "to" << entry.replacement << entry.aliases;
    *out << shown.toStdString();
}

} // namespace lorvane
