#pragma once

#include "Core/ByteSink.h"

#include <QStringView>

#include <algorithm>
#include <vector>

namespace lorvane {

/// Writes one JSON text, pretty: one value a line, two blanks an indent, " : " after a key. The
/// caller sees to the order of keys and to matching begins and ends.
class JsonWriter {
public:
    explicit JsonWriter(ByteSink sink);

    /// Hands the rest to the sink.
    void finish();

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// Starts a member of an object; the next call writes its value.
    void key(QByteArrayView key);

    /// Unpaired surrogates, which UTF-8 has no form for, go in as escapes.
    void string(QStringView value);
    void integer(qint64 value);
    void boolean(bool value);

    /// The shortest form that reads back the same. `value` must be finite.
    void number(double value);

    /// A string of ASCII that needs no escape.
    void plainString(QByteArrayView value);

private:
    void begin(char bracket);
    void end(char bracket);
    void startValue();
    void startLine();

    /// The place for the next bytes, with room for that many.
    char *room(qsizetype size) {
        if (std::ssize(buffer_) - size_ < size)
            makeRoom(size);
        return buffer_.data() + size_;
    }
    void makeRoom(qsizetype size);
    void put(char character) {
        *room(1) = character;
        ++size_;
    }
    void put(QByteArrayView bytes) {
        std::copy(bytes.begin(), bytes.end(), room(bytes.size()));
        size_ += bytes.size();
    }

    ByteSink sink_;
    std::vector<char> buffer_; ///< the first size_ bytes are written
    qsizetype size_ = 0;
    qsizetype depth_ = 0;
    bool isFirst_ = true;   ///< nothing stands in the innermost brackets yet
    bool afterKey_ = false; ///< the value belongs on the key's line
};

} // namespace lorvane
