#include "Core/RegularExpression.h"

#include "Core/IcuText.h"

#include <unicode/uregex.h>

namespace lorvane {
namespace {

QString escaped(QStringView literal, bool (*isSpecial)(char16_t)) {
    QString result;
    result.reserve(literal.size() + 8);
    for (const QChar unit : literal) {
        if (isSpecial(unit.unicode()))
            result += u'\\';
        result += unit;
    }
    return result;
}

} // namespace

void RegularExpression::Close::operator()(URegularExpression *expression) const {
    uregex_close(expression);
}

RegularExpression::RegularExpression(const QString &pattern, Case sensitivity) {
    UErrorCode status = U_ZERO_ERROR;
    const uint32_t flags = sensitivity == Case::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
    expression_.reset(uregex_open(units(pattern), length(pattern), flags, nullptr, &status));
    if (U_FAILURE(status))
        expression_.reset();
}

QList<RegularExpression::Range> RegularExpression::matches(QStringView text) const {
    QList<Range> ranges;
    if (!isValid())
        return ranges;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(expression_.get(), units(text), length(text), &status);
    while (uregex_findNext(expression_.get(), &status)) {
        const int32_t start = uregex_start(expression_.get(), 0, &status);
        const int32_t end = uregex_end(expression_.get(), 0, &status);
        ranges.append({.start = start, .length = end - start});
    }
    return ranges;
}

QString RegularExpression::replacingMatches(const QString &text, const QString &replacement) const {
    if (!isValid())
        return text;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(expression_.get(), units(text), length(text), &status);
    QString result(text.size() + 16, Qt::Uninitialized);
    while (true) {
        const int32_t needed =
            uregex_replaceAll(expression_.get(), units(replacement), length(replacement),
                              reinterpret_cast<UChar *>(result.data()), length(result), &status);
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            result.resize(U_SUCCESS(status) ? needed : 0);
            return U_SUCCESS(status) ? result : text;
        }
        status = U_ZERO_ERROR;
        result.resize(needed);
    }
}

QString RegularExpression::escapedPattern(QStringView literal) {
    // ICU takes any ASCII character that is neither letter nor digit for itself after a backslash.
    return escaped(literal, [](char16_t unit) {
        return (unit >= u'!' && unit <= u'/') || (unit >= u':' && unit <= u'@') ||
               (unit >= u'[' && unit <= u'`') || (unit >= u'{' && unit <= u'~');
    });
}

QString RegularExpression::escapedTemplate(QStringView literal) {
    return escaped(literal, [](char16_t unit) { return unit == u'$' || unit == u'\\'; });
}

} // namespace lorvane
