#include "Core/JsonReader.h"

#include "Core/LibraryFormat.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace lorvane {
namespace {

constexpr int mostDepth = 512;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// QString::fromUtf8 takes a byte order mark at the start away, which here is text like any other.
QString decoded(std::string_view utf8) {
    QString marks;
    while (utf8.starts_with(byteOrderMark)) {
        marks += QChar::ByteOrderMark;
        utf8.remove_prefix(byteOrderMark.size());
    }
    const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    return marks.isEmpty() ? text : marks + text;
}

const char *firstInvalid(const char *begin, const char *end) {
    const auto *bytes = reinterpret_cast<const uint8_t *>(begin);
    const std::ptrdiff_t size = end - begin;
    for (std::ptrdiff_t i = 0; i < size;) {
        const std::ptrdiff_t start = i;
        UChar32 character;
        U8_NEXT(bytes, i, size, character);
        if (character < 0)
            return begin + start;
    }
    return end;
}

} // namespace

JsonReader::JsonReader(const QByteArray &json)
    : begin_(json.constData()), end_(begin_ + json.size()), next_(begin_), value_(begin_) {
    if (!json.isValidUtf8())
        fail(firstInvalid(begin_, end_), QStringLiteral("is not UTF-8"));
}

void JsonReader::fail(const char *place, const QString &reason) const {
    const char *line = begin_;
    qsizetype lineNumber = 1;
    for (const char *byte = begin_; byte < place; ++byte) {
        if (*byte == '\n') {
            line = byte + 1;
            ++lineNumber;
        }
    }
    const auto column = 1 + std::count_if(line, place, [](char byte) {
                            return !U8_IS_TRAIL(static_cast<uint8_t>(byte));
                        });
    const QString subject =
        path_.empty() ? QStringLiteral("The library file") : u'“' + path() + u'”';
    throw DecodingError(QStringLiteral("%1 %2 (line %3, column %4).")
                            .arg(subject, reason)
                            .arg(lineNumber)
                            .arg(column));
}

QString JsonReader::path() const {
    QString path;
    for (const Step &step : path_) {
        if (step.key.empty()) {
            path += QStringLiteral("[%1]").arg(step.index);
        } else {
            if (!path.isEmpty())
                path += u'.';
            path += name(step.key);
        }
    }
    return path;
}

void JsonReader::skipSpace() {
    while (next_ < end_ && (*next_ == ' ' || *next_ == '\n' || *next_ == '\r' || *next_ == '\t'))
        ++next_;
}

void JsonReader::startValue() {
    skipSpace();
    value_ = next_;
    if (next_ == end_)
        fail(next_, QStringLiteral("ends too early"));
}

void JsonReader::startValue(char first, const QString &expected) {
    startValue();
    if (*next_ != first)
        failAtValue(QStringLiteral("is not ") + expected);
    ++next_;
}

bool JsonReader::take(char character) {
    skipSpace();
    if (next_ == end_ || *next_ != character)
        return false;
    ++next_;
    return true;
}

bool JsonReader::takeComma(char closing) {
    if (take(','))
        return true;
    if (take(closing))
        return false;
    fail(next_, next_ == end_ ? QStringLiteral("ends too early")
                              : QStringLiteral("lacks a “,” or “%1”").arg(QLatin1Char(closing)));
}

void JsonReader::enter() {
    if (++depth_ > mostDepth)
        failAtValue(QStringLiteral("is nested too deeply"));
}

std::string_view JsonReader::readKey() {
    startValue();
    if (*next_ != '"')
        failAtValue(QStringLiteral("lacks a key in quotation marks"));
    ++next_;
    const char *const start = next_;
    const bool hasEscapes = scanString();
    std::string_view key(start, static_cast<std::size_t>(next_ - 1 - start));
    if (hasEscapes) {
        key_ = unescaped(key).toUtf8();
        key = std::string_view(key_.constData(), static_cast<std::size_t>(key_.size()));
    }
    if (!take(':'))
        fail(next_, QStringLiteral("lacks a “:” after a key"));
    return key;
}

bool JsonReader::scanString() {
    bool hasEscapes = false;
    for (; next_ < end_; ++next_) {
        const char byte = *next_;
        if (byte == '"') {
            ++next_;
            return hasEscapes;
        }
        if (static_cast<unsigned char>(byte) < 0x20)
            fail(next_, QStringLiteral("has a control character that isn’t escaped"));
        if (byte == '\\') {
            hasEscapes = true;
            if (++next_ == end_)
                break;
        }
    }
    fail(next_, QStringLiteral("ends too early"));
}

QString JsonReader::unescaped(std::string_view raw) const {
    QString text;
    text.reserve(static_cast<qsizetype>(raw.size()));
    while (true) {
        const std::size_t plain = std::min(raw.find('\\'), raw.size());
        text += decoded(raw.substr(0, plain));
        if (plain == raw.size())
            return text;
        const char kind = raw[plain + 1];
        raw.remove_prefix(plain + 2);
        switch (kind) {
        case '"':
        case '\\':
        case '/': text += QLatin1Char(kind); break;
        case 'b': text += u'\b'; break;
        case 'f': text += u'\f'; break;
        case 'n': text += u'\n'; break;
        case 'r': text += u'\r'; break;
        case 't': text += u'\t'; break;
        case 'u': {
            // Each escape is one UTF-16 unit; half a pair is kept, as it came from such a string.
            std::uint16_t unit = 0;
            const std::string_view digits = raw.substr(0, 4);
            const auto result =
                std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
            if (digits.size() < 4 || result.ptr != digits.data() + 4)
                fail(raw.data(), QStringLiteral("has an escape without four digits"));
            text += QChar(unit);
            raw.remove_prefix(4);
            break;
        }
        default: fail(raw.data() - 1, QStringLiteral("has an unknown escape"));
        }
    }
}

QString JsonReader::readString() {
    startValue('"', QStringLiteral("a string"));
    const char *const start = next_;
    const bool hasEscapes = scanString();
    const std::string_view raw(start, static_cast<std::size_t>(next_ - 1 - start));
    return hasEscapes ? unescaped(raw) : decoded(raw);
}

std::string_view JsonReader::scanNumber() {
    startValue();
    const auto digits = [this] {
        if (!isDigit(*next_)) // past the end there is a NUL
            fail(next_, value_ == next_ ? QStringLiteral("is not a number")
                                        : QStringLiteral("has a number that lacks a digit"));
        while (isDigit(*next_))
            ++next_;
    };
    if (*next_ == '-')
        ++next_;
    if (*next_ == '0')
        ++next_;
    else
        digits();
    if (*next_ == '.') {
        ++next_;
        digits();
    }
    if (*next_ == 'e' || *next_ == 'E') {
        ++next_;
        if (*next_ == '+' || *next_ == '-')
            ++next_;
        digits();
    }
    return {value_, static_cast<std::size_t>(next_ - value_)};
}

double JsonReader::readNumber() {
    const std::string_view text = scanNumber();
    double value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc())
        failAtValue(QStringLiteral("is a number out of range"));
    return value;
}

qint64 JsonReader::readInteger() {
    const std::string_view text = scanNumber();
    qint64 value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc())
        failAtValue(QStringLiteral("is a number out of range"));
    if (result.ptr == text.data() + text.size())
        return value;
    // There is a fraction or an exponent. Up to 2^53 a double holds every whole number.
    constexpr double mostWhole = 9007199254740992;
    double number = 0;
    const auto spelt = std::from_chars(text.data(), text.data() + text.size(), number);
    if (spelt.ec != std::errc() || std::abs(number) > mostWhole)
        failAtValue(QStringLiteral("is a number out of range"));
    if (number != std::trunc(number))
        failAtValue(QStringLiteral("is not a whole number"));
    return static_cast<qint64>(number);
}

bool JsonReader::takeWord(std::string_view word) {
    startValue();
    if (!std::string_view(next_, static_cast<std::size_t>(end_ - next_)).starts_with(word))
        return false;
    next_ += word.size();
    return true;
}

bool JsonReader::readBoolean() {
    if (takeWord("true"))
        return true;
    if (takeWord("false"))
        return false;
    failAtValue(QStringLiteral("is neither true nor false"));
}

bool JsonReader::readNull() { return takeWord("null"); }

void JsonReader::skipValue() {
    startValue();
    switch (*next_) {
    case '{': readMembers([this](std::string_view) { skipValue(); }); break;
    case '[': readArray([this] { skipValue(); }); break;
    case '"': readString(); break;
    case 't':
    case 'f': readBoolean(); break;
    case 'n':
        if (!readNull())
            failAtValue(QStringLiteral("has a value that isn’t JSON"));
        break;
    default: scanNumber();
    }
}

void JsonReader::finish() {
    skipSpace();
    if (next_ != end_)
        fail(next_, QStringLiteral("has something after its end"));
}

} // namespace lorvane
