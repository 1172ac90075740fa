#include "Core/JsonWriter.h"

#include <array>
#include <charconv>
#include <iterator>
#include <utility>

namespace lorvane {
namespace {

/// Larger pieces than the usual 64 KiB: a large library is then written a sixth faster.
constexpr std::size_t bufferSize = 256U << 10;

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

char *writeEscape(char *out, char16_t unit) {
    *out++ = '\\';
    *out++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4)
        *out++ = hexDigits[(unit >> shift) & 0xF];
    return out;
}

} // namespace

JsonWriter::JsonWriter(ByteSink sink) : sink_(std::move(sink)), buffer_(bufferSize) {}

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
    for (; unit < last; ++unit) {
        if (*unit < 0x80) {
            const char escape = escapes[*unit];
            if (escape == 0) {
                *out++ = static_cast<char>(*unit);
            } else if (escape == 'u') {
                out = writeEscape(out, *unit);
            } else {
                *out++ = '\\';
                *out++ = escape;
            }
        } else if (*unit < 0x800) {
            *out++ = static_cast<char>(0xC0 | *unit >> 6);
            *out++ = static_cast<char>(0x80 | (*unit & 0x3F));
        } else if (!QChar::isSurrogate(*unit)) {
            *out++ = static_cast<char>(0xE0 | *unit >> 12);
            *out++ = static_cast<char>(0x80 | (*unit >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (*unit & 0x3F));
        } else if (QChar::isHighSurrogate(*unit) && unit + 1 < last &&
                   QChar::isLowSurrogate(unit[1])) {
            const char32_t character = QChar::surrogateToUcs4(unit[0], unit[1]);
            *out++ = static_cast<char>(0xF0 | character >> 18);
            *out++ = static_cast<char>(0x80 | (character >> 12 & 0x3F));
            *out++ = static_cast<char>(0x80 | (character >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (character & 0x3F));
            ++unit;
        } else {
            out = writeEscape(out, *unit);
        }
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
