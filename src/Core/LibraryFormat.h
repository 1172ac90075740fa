#pragma once

#include "Core/ByteSink.h"
#include "Core/LocalizedError.h"
#include "Core/Models.h"

#include <QByteArray>

namespace lorvane {

/// Says where in the JSON text the trouble is, and what it is.
class DecodingError : public LocalizedError {
public:
    using LocalizedError::LocalizedError;
};

/// A value that JSON or its date form has no words for: a duration that isn't finite, an invalid
/// date or one outside the years 0 to 9999.
class EncodingError : public LocalizedError {
public:
    using LocalizedError::LocalizedError;
};

/// Hands the snapshot to the sink as JSON in UTF-8: keys sorted, two blanks an indent, "/" escaped,
/// no line break at the end. The fraction of a second of a date is dropped. Throws EncodingError,
/// maybe after a part of the text.
void encodeLibrary(const AppSnapshot &snapshot, const ByteSink &sink);

/// The same text in one piece.
QByteArray encodeLibrary(const AppSnapshot &snapshot);

/// The snapshot in a JSON text in UTF-8. Unknown keys are ignored; anything else that isn't as
/// encodeLibrary writes it, spelling aside, fails. Throws DecodingError.
AppSnapshot decodeLibrary(const QByteArray &json);

} // namespace lorvane
