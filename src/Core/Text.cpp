#include "Core/Text.h"

#include "Core/IcuText.h"

#include <unicode/normalizer2.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>

namespace lorvane {
namespace {

bool isAscii(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80; });
}

/// Runs an ICU function that fills a buffer and returns the length needed, twice where the first
/// guess was too short.
template <typename Fill>
QString filled(qsizetype guess, Fill &&fill) {
    QString result(std::max<qsizetype>(guess, 16), Qt::Uninitialized);
    while (true) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t needed =
            fill(reinterpret_cast<UChar *>(result.data()), length(result), status);
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            result.resize(U_SUCCESS(status) ? needed : 0);
            return result;
        }
        result.resize(needed);
    }
}

QString decomposed(QStringView text) {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *nfd = unorm2_getNFDInstance(&status);
    return filled(text.size(), [&](UChar *buffer, int32_t capacity, UErrorCode &error) {
        return unorm2_normalize(nfd, units(text), length(text), buffer, capacity, &error);
    });
}

template <typename Predicate>
QStringView trimmedOf(QStringView text, Predicate &&isDropped) {
    const UChar *unit = units(text);
    int32_t start = 0;
    int32_t end = length(text);
    while (start < end) {
        int32_t next = start;
        UChar32 character;
        U16_NEXT(unit, next, end, character);
        if (!isDropped(character))
            break;
        start = next;
    }
    while (start < end) {
        int32_t previous = end;
        UChar32 character;
        U16_PREV(unit, start, previous, character);
        if (!isDropped(character))
            break;
        end = previous;
    }
    return text.sliced(start, end - start);
}

bool isSpace(UChar32 character) { return u_isUWhiteSpace(character); }

bool bearsDiacritics(UChar32 base) {
    UErrorCode status = U_ZERO_ERROR;
    switch (uscript_getScript(base, &status)) {
    case USCRIPT_LATIN:
    case USCRIPT_GREEK:
    case USCRIPT_CYRILLIC:
    case USCRIPT_HEBREW:
    case USCRIPT_ARABIC: return true;
    default: return false;
    }
}

/// An iterator over user-perceived characters. Opening one costs more than most of its uses.
UBreakIterator *characters(QStringView text) {
    struct Close {
        void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
    };
    thread_local const std::unique_ptr<UBreakIterator, Close> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, Close>(
            ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    }();
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(iterator.get(), units(text), length(text), &status);
    return iterator.get();
}

} // namespace

QString Text::trimmed(QStringView text) { return trimmedOf(text, isSpace).toString(); }

QString Text::trimmedOfPunctuation(QStringView text) {
    return trimmedOf(text, [](UChar32 c) { return isSpace(c) || u_ispunct(c); }).toString();
}

bool Text::isBlank(QStringView text) { return trimmedOf(text, isSpace).isEmpty(); }

qsizetype Text::wordCount(QStringView text) {
    qsizetype count = 0;
    bool inWord = false;
    for (const QChar unit : text) { // all white space is in the basic plane
        const bool space = isSpace(unit.unicode());
        count += !space && !inWord;
        inWord = !space;
    }
    return count;
}

qsizetype Text::characterCount(QStringView text) {
    if (isAscii(text) && !text.contains(u'\r'))
        return text.size();
    UBreakIterator *iterator = characters(text);
    qsizetype count = 0;
    while (ubrk_next(iterator) != UBRK_DONE)
        ++count;
    return count;
}

bool Text::equalsCanonically(QStringView left, QStringView right) {
    if (left == right)
        return true;
    UErrorCode status = U_ZERO_ERROR;
    return unorm_compare(units(left), length(left), units(right), length(right), 0, &status) == 0;
}

bool Text::equalsCaseInsensitively(QStringView left, QStringView right) {
    if (left == right)
        return true;
    UErrorCode status = U_ZERO_ERROR;
    return unorm_compare(units(left), length(left), units(right), length(right),
                         U_COMPARE_IGNORE_CASE, &status) == 0;
}

QString Text::canonicalKey(QStringView text) {
    return isAscii(text) ? text.toString() : decomposed(text);
}

QString Text::caseFolded(QStringView text) {
    return filled(text.size(), [&](UChar *buffer, int32_t capacity, UErrorCode &error) {
        return u_strFoldCase(buffer, capacity, units(text), length(text), U_FOLD_CASE_DEFAULT,
                             &error);
    });
}

QString Text::caselessKey(QStringView text) {
    // Canonical caseless matching, The Unicode Standard, section 3.13, D145.
    return isAscii(text) ? caseFolded(text) : decomposed(caseFolded(decomposed(text)));
}

QString Text::folded(QStringView text) {
    const QString key = caselessKey(text);
    if (isAscii(key))
        return key;
    QString result;
    result.reserve(key.size());
    bool strips = false;
    const UChar *unit = units(key);
    for (int32_t i = 0; i < length(key);) {
        const int32_t start = i;
        UChar32 character;
        U16_NEXT(unit, i, length(key), character);
        const bool isMark = u_charType(character) == U_NON_SPACING_MARK;
        if (isMark && strips)
            continue;
        if (!isMark)
            strips = bearsDiacritics(character);
        result += QStringView(key).sliced(start, i - start);
    }
    return result;
}

QString Text::withUppercaseStart(QStringView text) {
    if (text.isEmpty())
        return {};
    const QStringView first = text.first(ubrk_next(characters(text)));
    QString upper =
        filled(first.size() + 2, [&](UChar *buffer, int32_t capacity, UErrorCode &error) {
            return u_strToUpper(buffer, capacity, units(first), length(first), "", &error);
        });
    return upper.append(text.sliced(first.size()));
}

bool Text::endsInLetterOrNumber(QStringView text) {
    if (text.isEmpty())
        return false;
    int32_t start = ubrk_preceding(characters(text), length(text));
    UChar32 character;
    U16_NEXT(units(text), start, length(text), character);
    return (U_GET_GC_MASK(character) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

} // namespace lorvane
