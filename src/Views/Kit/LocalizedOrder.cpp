#include "Views/Kit/LocalizedOrder.h"

#include <QByteArray>

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace lorvane {

namespace {

QByteArray sortKey(const icu::Collator &collator, const QString &text) {
    const icu::UnicodeString aliased(false, reinterpret_cast<const char16_t *>(text.utf16()),
                                     static_cast<int32_t>(text.size()));
    QByteArray key(4 * text.size() + 16, Qt::Uninitialized);
    const auto fill = [&] {
        return collator.getSortKey(aliased, reinterpret_cast<uint8_t *>(key.data()),
                                   static_cast<int32_t>(key.size()));
    };
    const int32_t length = fill();
    const bool isWhole = length <= key.size();
    key.resize(length);
    if (!isWhole)
        fill();
    return key;
}

} // namespace

QList<qsizetype> localizedOrder(const QStringList &texts, const QLocale &locale) {
    QList<qsizetype> order(texts.size());
    std::iota(order.begin(), order.end(), 0);
    UErrorCode status = U_ZERO_ERROR;
    const auto name = icu::Locale::forLanguageTag(locale.bcp47Name().toStdString(), status);
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(name, status));
    if (!collator)
        return order;
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    QList<QByteArray> keys;
    keys.reserve(texts.size());
    for (const QString &text : texts)
        keys.append(sortKey(*collator, text));
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype left, qsizetype right) { return keys[left] < keys[right]; });
    return order;
}

} // namespace lorvane
