#pragma once

#include <QStringView>

#include <unicode/umachine.h>

namespace lorvane {

/// A text as ICU's functions take it. A QString and an ICU string are the same memory, under two
/// names of the same type. Never null.
inline const UChar *units(QStringView text) {
    static constexpr UChar none = 0;
    return text.isEmpty() ? &none : text.utf16();
}

/// In UTF-16 units.
inline int32_t length(QStringView text) { return static_cast<int32_t>(text.size()); }

} // namespace lorvane
