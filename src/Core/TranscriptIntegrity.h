#pragma once

#include <QStringView>

namespace lorvane::TranscriptIntegrity {

/// Whether a finished transcript lost text against one already seen: fewer than 60% of its words,
/// where it has at least 12. Shorter dictations are never judged.
bool isSeverelyShorter(QStringView candidate, QStringView reference);

} // namespace lorvane::TranscriptIntegrity
