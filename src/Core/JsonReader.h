#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace lorvane {

/// Reads one JSON text in UTF-8, by RFC 8259 and nothing looser, in the order in which it stands.
/// Each read consumes one value and fails when the text has another kind there. Failing is throwing
/// a DecodingError that names the place.
class JsonReader {
public:
    /// `json` must outlive the reader. Fails when it isn't UTF-8.
    explicit JsonReader(const QByteArray &json);

    QString readString();
    double readNumber();
    /// Takes every spelling of a whole number, "2e0" among them.
    qint64 readInteger();
    bool readBoolean();
    /// True when a null stood there; else nothing is consumed.
    bool readNull();

    /// Calls `readElement` at the start of each element, which it must read.
    template <typename ReadElement>
    void readArray(ReadElement &&readElement);

    /// A key that an object may have, and what reads its value.
    template <typename ReadValue>
    struct Member {
        std::string_view key;
        bool isRequired;
        ReadValue readValue;
    };
    template <typename ReadValue>
    static Member<ReadValue> required(std::string_view key, ReadValue readValue) {
        return {key, true, readValue};
    }
    template <typename ReadValue>
    static Member<ReadValue> optional(std::string_view key, ReadValue readValue) {
        return {key, false, readValue};
    }

    /// Reads an object with these members, in any order. Other members are skipped. Fails when a
    /// required one is missing, or one of these stands twice.
    template <typename... Members>
    void readObject(const Members &...members);

    /// Fails when anything but white space is left.
    void finish();

    /// Fails at the value that was read last.
    [[noreturn]] void failAtValue(const QString &reason) const { fail(value_, reason); }

private:
    /// A step on the way from the top of the text to a value: a key, or else an index.
    struct Step {
        std::string_view key;
        qsizetype index;
    };

    static QString name(std::string_view key) {
        return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
    }

    [[noreturn]] void fail(const char *place, const QString &reason) const;
    QString path() const;

    void skipSpace();
    void startValue();
    void startValue(char first, const QString &expected);
    bool take(char character);
    /// After an element or a member: true when a comma promises another one.
    bool takeComma(char closing);
    void enter();
    void leave() { --depth_; }

    /// Calls `readMember` with each key of an object; it must read the value.
    template <typename ReadMember>
    void readMembers(ReadMember &&readMember);
    std::string_view readKey();
    std::string_view scanNumber();
    /// Past the closing quotation mark; tells whether there were escapes.
    bool scanString();
    QString unescaped(std::string_view raw) const;
    bool takeWord(std::string_view word);
    void skipValue();

    const char *const begin_;
    const char *const end_;
    const char *next_;
    const char *value_; ///< where the value began that was read last
    int depth_ = 0;
    std::vector<Step> path_;
    QByteArray key_; ///< the bytes of a key that was written with escapes
};

template <typename ReadElement>
void JsonReader::readArray(ReadElement &&readElement) {
    startValue('[', QStringLiteral("an array"));
    enter();
    path_.push_back({{}, 0});
    if (!take(']')) {
        do {
            readElement();
            ++path_.back().index;
        } while (takeComma(']'));
    }
    path_.pop_back();
    leave();
}

template <typename ReadMember>
void JsonReader::readMembers(ReadMember &&readMember) {
    startValue('{', QStringLiteral("an object"));
    enter();
    if (!take('}')) {
        do {
            readMember(readKey());
        } while (takeComma('}'));
    }
    leave();
}

template <typename... Members>
void JsonReader::readObject(const Members &...members) {
    std::array<bool, sizeof...(Members)> seen{};
    skipSpace();
    const char *const object = next_;
    readMembers([&](std::string_view key) {
        std::size_t index = 0;
        const auto read = [&](const auto &member) {
            const std::size_t own = index++;
            if (key != member.key)
                return false;
            if (std::exchange(seen[own], true))
                failAtValue(QStringLiteral("has the key “%1” twice").arg(name(key)));
            path_.push_back({member.key, 0});
            member.readValue();
            path_.pop_back();
            return true;
        };
        if (!(read(members) || ...))
            skipValue();
    });
    std::size_t index = 0;
    const auto check = [&](const auto &member) {
        if (!seen[index++] && member.isRequired)
            fail(object, QStringLiteral("lacks the key “%1”").arg(name(member.key)));
    };
    (check(members), ...);
}

} // namespace lorvane
