#include "Speech/WordErrors.h"

#include <QHash>
#include <QRegularExpression>

#include <unicode/rbnf.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace lorvane {

namespace {

/// A number in words by one of ICU's rules, such as "%spellout-ordinal".
QString spelled(qint64 number, const char *rule) {
    static const auto format = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::make_unique<icu::RuleBasedNumberFormat>(icu::URBNF_SPELLOUT,
                                                            icu::Locale::getEnglish(), status);
    }();
    icu::UnicodeString text;
    icu::FieldPosition position;
    UErrorCode status = U_ZERO_ERROR;
    format->format(int64_t(number), icu::UnicodeString(rule), text, position, status);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QString spelledToken(const QString &token) {
    static const QRegularExpression number(u"^(\\d+)(st|nd|rd|th)?$"_qs);
    const QRegularExpressionMatch match = number.match(token);
    if (!match.hasMatch())
        return token;
    const qint64 value = match.captured(1).toLongLong();
    if (!match.captured(2).isEmpty())
        return spelled(value, "%spellout-ordinal");
    if (value > 1100 && value < 2000)
        return spelled(value, "%spellout-numbering-year");
    return spelled(value, "%spellout-numbering");
}

} // namespace

QStringList spokenWords(const QString &text) {
    static const QHash<QString, QString> sameWords{
        {u"mr"_qs, u"mister"_qs},  {u"mrs"_qs, u"missus"_qs}, {u"dr"_qs, u"doctor"_qs},
        {u"okay"_qs, u"ok"_qs},    {u"&"_qs, u"and"_qs},      {u"percent"_qs, u"per cent"_qs},
        {u"%"_qs, u"per cent"_qs},
    };
    static const QRegularExpression thousands(u"(?<=\\d),(?=\\d{3})"_qs);
    static const QRegularExpression marks(u"[^\\p{L}\\p{N}'&%]+"_qs);
    static const QRegularExpression digits(u"(\\d+(?:st|nd|rd|th)?)"_qs);

    QString plain = text.toLower().replace(QChar(0x2019), u'\'').remove(thousands);
    plain.replace(marks, u" "_qs).replace(digits, u" \\1 "_qs).replace(u"%"_qs, u" % "_qs);
    QStringList words;
    for (QString word : plain.split(u' ', Qt::SkipEmptyParts)) {
        word = spelledToken(word).replace(u'-', u' ');
        word = sameWords.value(word, word).remove(u'\'');
        words.append(word.split(u' ', Qt::SkipEmptyParts));
    }
    return words;
}

WordErrors &WordErrors::operator+=(const WordErrors &other) {
    substitutions += other.substitutions;
    insertions += other.insertions;
    deletions += other.deletions;
    wordCount += other.wordCount;
    return *this;
}

WordErrors wordErrors(const QStringList &said, const QStringList &heard) {
    // One row of the table of edit distances, each cell with its counts.
    std::vector<WordErrors> row(static_cast<std::size_t>(heard.size()) + 1);
    for (std::size_t j = 1; j < row.size(); ++j)
        row[j].insertions = static_cast<int>(j);
    for (const QString &word : said) {
        WordErrors diagonal = row[0];
        ++row[0].deletions;
        for (std::size_t j = 1; j < row.size(); ++j) {
            WordErrors changed = diagonal;
            if (word != heard[static_cast<qsizetype>(j) - 1])
                ++changed.substitutions;
            WordErrors deleted = row[j];
            ++deleted.deletions;
            WordErrors inserted = row[j - 1];
            ++inserted.insertions;
            diagonal = row[j];
            row[j] = std::min(
                {changed, deleted, inserted},
                [](const WordErrors &a, const WordErrors &b) { return a.errors() < b.errors(); });
        }
    }
    row.back().wordCount = static_cast<int>(said.size());
    return row.back();
}

} // namespace lorvane
