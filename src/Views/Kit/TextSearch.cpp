#include "Views/Kit/TextSearch.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>

namespace lorvane {

namespace {

constexpr std::size_t unitCount = 0x10000;
using FoldTable = std::array<char16_t, unitCount>;

uint32_t foldOptions(bool turkic) {
    return turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

/// Equal for two texts exactly when they are equal without case. Composed, so that a letter with a
/// mark is found as a whole.
icu::UnicodeString caselessKey(const icu::UnicodeString &text, bool turkic) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *composer = icu::Normalizer2::getNFCInstance(status);
    icu::UnicodeString key = composer->normalize(text, status);
    key.foldCase(foldOptions(turkic));
    return composer->normalize(key, status);
}

/// What a unit becomes in the key whatever stands around it; 0 where that depends, and for halves
/// of a pair. Nearly all that people say is in this table, and a look into it costs a nanosecond.
std::unique_ptr<const FoldTable> makeFoldTable(bool turkic) {
    auto table = std::make_unique<FoldTable>();
    const auto standsAlone = [](UChar32 unit) {
        return !U_IS_SURROGATE(unit) && u_getCombiningClass(unit) == 0 &&
               u_getIntPropertyValue(unit, UCHAR_NFC_QUICK_CHECK) == UNORM_YES;
    };
    for (UChar32 unit = 1; unit < static_cast<UChar32>(unitCount); ++unit) {
        char16_t &entry = (*table)[static_cast<std::size_t>(unit)];
        if (!standsAlone(unit))
            continue;
        if (!u_hasBinaryProperty(unit, UCHAR_CHANGES_WHEN_CASEFOLDED)) {
            entry = static_cast<char16_t>(unit);
            continue;
        }
        const icu::UnicodeString key = caselessKey(icu::UnicodeString(unit), turkic);
        if (key.length() == 1 && standsAlone(key[0]))
            entry = key[0];
    }
    return table;
}

const char16_t *foldTable(bool turkic) {
    static const std::unique_ptr<const FoldTable> usual = makeFoldTable(false);
    if (!turkic)
        return usual->data();
    static const std::unique_ptr<const FoldTable> special = makeFoldTable(true);
    return special->data();
}

bool isTurkic(const QLocale &locale) {
    return locale.language() == QLocale::Turkish || locale.language() == QLocale::Azerbaijani;
}

QString caselessKey(QStringView text, bool turkic) {
    const icu::UnicodeString key = caselessKey(
        icu::UnicodeString(false, text.utf16(), static_cast<int32_t>(text.size())), turkic);
    return QStringView(key.getBuffer(), key.length()).toString();
}

/// The key of a text of English letters, of which the compiler takes several at a time; false if it
/// has others, too.
bool foldAscii(QStringView text, char16_t *key) {
    const char16_t *source = text.utf16();
    char16_t all = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = source[i];
        const bool isCapital = static_cast<char16_t>(unit - u'A') < 26;
        key[i] = static_cast<char16_t>(unit | (isCapital ? 0x20 : 0));
        all = static_cast<char16_t>(all | unit);
    }
    return all < 0x80;
}

/// Whether a mark stands there that belongs to the character before it.
bool isMark(QStringView text, qsizetype index) {
    if (index >= text.size())
        return false;
    UChar32 character = 0;
    U16_GET(text.utf16(), 0, index, text.size(), character);
    return (U_GET_GC_MASK(character) & U_GC_M_MASK) != 0;
}

} // namespace

TextSearch::TextSearch(QStringView sought, const QLocale &locale)
    : folded_(foldTable(isTurkic(locale))),
      turkic_(isTurkic(locale)),
      sought_(caselessKey(sought, turkic_)) {}

bool TextSearch::isIn(QStringView text) const {
    const qsizetype length = sought_.pattern().size();
    if (length == 0)
        return true;
    thread_local QString key;
    key.resize(text.size());
    auto *units = reinterpret_cast<char16_t *>(key.data());
    if (turkic_ || !foldAscii(text, units)) {
        const char16_t *source = text.utf16();
        bool isSimple = true;
        for (qsizetype i = 0; i < text.size(); ++i) {
            units[i] = folded_[source[i]];
            isSimple &= units[i] != 0;
        }
        if (!isSimple)
            key = caselessKey(text, turkic_);
    }
    // A single unit is found sixteen at a time; a longer text is skipped through.
    const QChar first = sought_.pattern().front();
    const auto next = [&](qsizetype from) {
        return length == 1 ? QStringView(key).indexOf(first, from) : sought_.indexIn(key, from);
    };
    for (qsizetype at = 0; (at = next(at)) >= 0; ++at) {
        if (!isMark(key, at + length))
            return true;
    }
    return false;
}

} // namespace lorvane
