#include "Core/TranscriptIntegrity.h"

#include "Core/Text.h"

namespace lorvane {

bool TranscriptIntegrity::isSeverelyShorter(QStringView candidate, QStringView reference) {
    const qsizetype referenceWords = Text::wordCount(reference);
    if (referenceWords < 12)
        return false;
    return static_cast<double>(Text::wordCount(candidate)) <
           static_cast<double>(referenceWords) * 0.6;
}

} // namespace lorvane
