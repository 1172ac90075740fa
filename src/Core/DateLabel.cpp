#include "Core/DateLabel.h"

#include <QLocale>

#include <unicode/datefmt.h>
#include <unicode/locid.h>

#include <memory>

namespace lorvane {

QString dateLabel(const QDateTime &date) {
    UErrorCode status = U_ZERO_ERROR;
    const auto locale = icu::Locale::forLanguageTag(QLocale().bcp47Name().toStdString(), status);
    const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kMedium, icu::DateFormat::kShort, locale));
    if (!format)
        return QLocale().toString(date.toLocalTime(), QLocale::ShortFormat);
    icu::UnicodeString text;
    format->format(static_cast<UDate>(date.toMSecsSinceEpoch()), text);
    return QStringView(text.getBuffer(), text.length()).toString();
}

} // namespace lorvane
