#pragma once

#include <QLocale>
#include <QString>
#include <QStringMatcher>
#include <QStringView>

namespace lorvane {

/// One search text, to be looked for in many texts: as a substring, without case as `locale` has it
/// (in Turkish, "I" is the capital of "ı"), by canonical equivalence. Diacritics count, and a match
/// ends where a character ends: "e" isn't in "é". An empty search text is in every text.
class TextSearch {
public:
    explicit TextSearch(QStringView sought, const QLocale &locale = QLocale());

    bool isIn(QStringView text) const;

private:
    const char16_t *folded_;
    bool turkic_;
    QStringMatcher sought_;
};

} // namespace lorvane
