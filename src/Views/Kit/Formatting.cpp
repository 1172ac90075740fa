#include "Views/Kit/Formatting.h"

#include <QLocale>

namespace lorvane {

QString groupedNumber(qint64 number) { return QLocale().toString(number); }

QString wordsLabel(const TranscriptRecord &record) {
    return u"%1 words"_qs.arg(record.wordCount());
}

} // namespace lorvane
