#pragma once

#include "Core/LocalizedError.h"

namespace lorvane {

/// Ends a recognition that nobody waits for any longer.
class Abandoned : public LocalizedError {
public:
    Abandoned() : LocalizedError(QStringLiteral("The recognition was abandoned.")) {}
};

} // namespace lorvane
