#include "Core/JsonWriter.h"

#include <array>
#include <charconv>
#include <iterator>
#include <utility>

namespace lorvane {
namespace {

constexpr char hexDigits[] = "0123456789abcdef";

/// What stands for the characters that JSON, or this writer, lets nobody write plainly: the letter
/// of a short escape, 'u' for the long one, 0 for none.
constexpr std::array<char, 128> escapes = [] {
    std::array<char, 128> table{};
    for (std::size_t control = 0; control < 0x20; ++control)
        table[control] = 'u';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    table['"'] = '"';
    table['\\'] = '\\';
    table['/'] = '/';
    return table;
}();

/// A block of units that are written as they stand: most of any text. Without branches, so that the
/// compiler looks at the whole block at once.
constexpr qsizetype blockSize = 16;
bool isPlainBlock(const char16_t *units) {
    unsigned others = 0;
    for (qsizetype i = 0; i < blockSize; ++i) {
        const unsigned unit = units[i];
        others |= unsigned(unit < 0x20) | unsigned(unit > 0x7F) | unsigned(unit == '"') |
                  unsigned(unit == '\\') | unsigned(unit == '/');
    }
    return others == 0;
}

char *writeEscape(char *out, char16_t unit) {
    *out++ = '\\';
    *out++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4)
        *out++ = hexDigits[(unit >> shift) & 0xF];
    return out;
}

/// Writes the character at `unit`, goes on behind it, and gives the end of what was written.
char *writeCharacter(char *out, const char16_t *&unit, const char16_t *last) {
    const char16_t first = *unit++;
    if (first < 0x80) {
        const char escape = escapes[first];
        if (escape == 0) {
            *out++ = static_cast<char>(first);
        } else if (escape == 'u') {
            out = writeEscape(out, first);
        } else {
            *out++ = '\\';
            *out++ = escape;
        }
    } else if (first < 0x800) {
        *out++ = static_cast<char>(0xC0 | first >> 6);
        *out++ = static_cast<char>(0x80 | (first & 0x3F));
    } else if (!QChar::isSurrogate(first)) {
        *out++ = static_cast<char>(0xE0 | first >> 12);
        *out++ = static_cast<char>(0x80 | (first >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (first & 0x3F));
    } else if (QChar::isHighSurrogate(first) && unit < last && QChar::isLowSurrogate(*unit)) {
        const char32_t character = QChar::surrogateToUcs4(first, *unit++);
        *out++ = static_cast<char>(0xF0 | character >> 18);
        *out++ = static_cast<char>(0x80 | (character >> 12 & 0x3F));
        *out++ = static_cast<char>(0x80 | (character >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (character & 0x3F));
    } else {
        out = writeEscape(out, first);
    }
    return out;
}

} // namespace

JsonWriter::JsonWriter(ByteSink sink) : sink_(std::move(sink)), buffer_(65536) {}

void JsonWriter::makeRoom(qsizetype size) {
    finish();
    if (std::ssize(buffer_) < size)
        buffer_.resize(static_cast<std::size_t>(size));
}

void JsonWriter::finish() {
    sink_(QByteArrayView(buffer_.data(), size_));
    size_ = 0;
}

void JsonWriter::begin(char bracket) {
    startValue();
    put(bracket);
    ++depth_;
    isFirst_ = true;
}

void JsonWriter::end(char bracket) {
    --depth_;
    if (!isFirst_)
        startLine();
    put(bracket);
    isFirst_ = false;
}

void JsonWriter::startLine() {
    put('\n');
    for (qsizetype i = 0; i < depth_; ++i)
        put("  ");
}

void JsonWriter::startValue() {
    if (!afterKey_ && depth_ > 0) {
        if (!isFirst_)
            put(',');
        startLine();
    }
    afterKey_ = false;
    isFirst_ = false;
}

void JsonWriter::key(QByteArrayView key) {
    plainString(key);
    put(" : ");
    afterKey_ = true;
}

void JsonWriter::plainString(QByteArrayView value) {
    startValue();
    put('"');
    put(value);
    put('"');
}

void JsonWriter::string(QStringView value) {
    startValue();
    constexpr qsizetype longestUnit = 6; // an escape
    char *out = room(longestUnit * value.size() + 2);
    *out++ = '"';
    const char16_t *unit = value.utf16();
    const char16_t *const last = unit + value.size();
    while (unit < last) {
        const char16_t *const blockEnd = unit + std::min<qsizetype>(blockSize, last - unit);
        if (blockEnd - unit == blockSize && isPlainBlock(unit)) {
            for (qsizetype i = 0; i < blockSize; ++i)
                out[i] = static_cast<char>(unit[i]);
            out += blockSize;
            unit = blockEnd;
            continue;
        }
        while (unit < blockEnd)
            out = writeCharacter(out, unit, last);
    }
    *out++ = '"';
    size_ = out - buffer_.data();
}

void JsonWriter::integer(qint64 value) {
    startValue();
    put(QByteArray::number(value));
}

void JsonWriter::boolean(bool value) {
    startValue();
    put(value ? "true" : "false");
}

void JsonWriter::number(double value) {
    startValue();
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    put(QByteArrayView(buffer.data(), end));
}

} // namespace lorvane
