#include "Core/LibraryFormat.h"

#include "Core/JsonReader.h"
#include "Core/JsonWriter.h"

#include <array>
#include <chrono>
#include <cmath>

namespace lorvane {
namespace {

using namespace std::chrono;

constexpr QLatin1StringView datePattern("0000-00-00T00:00:00Z");
constexpr QLatin1StringView uuidPattern("00000000-0000-0000-0000-000000000000");

// --- Writing

void putDigits(char *place, int count, unsigned value, unsigned base = 10) {
    for (int i = count - 1; i >= 0; --i, value /= base)
        place[i] = "0123456789ABCDEF"[value % base];
}

void write(JsonWriter &json, const QDateTime &date) {
    const sys_seconds time =
        floor<seconds>(sys_time<milliseconds>(milliseconds(date.toMSecsSinceEpoch())));
    const sys_days day = floor<days>(time);
    const year_month_day ymd(day);
    if (!date.isValid() || ymd.year() < year(0) || ymd.year() > year(9999))
        throw EncodingError(QStringLiteral("A date of the library can’t be written."));
    const hh_mm_ss clock(time - day);
    std::array<char, datePattern.size()> text;
    std::copy(datePattern.begin(), datePattern.end(), text.begin());
    putDigits(&text[0], 4, static_cast<unsigned>(static_cast<int>(ymd.year())));
    putDigits(&text[5], 2, static_cast<unsigned>(ymd.month()));
    putDigits(&text[8], 2, static_cast<unsigned>(ymd.day()));
    putDigits(&text[11], 2, static_cast<unsigned>(clock.hours().count()));
    putDigits(&text[14], 2, static_cast<unsigned>(clock.minutes().count()));
    putDigits(&text[17], 2, static_cast<unsigned>(clock.seconds().count()));
    json.plainString(QByteArrayView(text.data(), text.size()));
}

void write(JsonWriter &json, const QUuid &id) {
    std::array<char, uuidPattern.size()> text;
    std::copy(uuidPattern.begin(), uuidPattern.end(), text.begin());
    putDigits(&text[0], 8, id.data1, 16);
    putDigits(&text[9], 4, id.data2, 16);
    putDigits(&text[14], 4, id.data3, 16);
    for (std::size_t i = 0; i < 8; ++i)
        putDigits(&text[(i < 2 ? 19 : 20) + 2 * i], 2, id.data4[i], 16);
    json.plainString(QByteArrayView(text.data(), text.size()));
}

void write(JsonWriter &json, const TranscriptRecord &record) {
    if (!std::isfinite(record.duration))
        throw EncodingError(QStringLiteral("A duration of the library can’t be written."));
    json.beginObject();
    json.key("createdAt");
    write(json, record.createdAt);
    json.key("duration");
    json.number(record.duration);
    json.key("id");
    write(json, record.id);
    json.key("text");
    json.string(record.text);
    json.endObject();
}

void write(JsonWriter &json, const VocabularyEntry &entry) {
    json.beginObject();
    json.key("aliases");
    json.beginArray();
    for (const QString &alias : entry.aliases)
        json.string(alias);
    json.endArray();
    json.key("id");
    write(json, entry.id);
    json.key("phrase");
    json.string(entry.phrase);
    json.key("replacement");
    json.string(entry.replacement);
    json.endObject();
}

void write(JsonWriter &json, const Snippet &snippet) {
    json.beginObject();
    json.key("content");
    json.string(snippet.content);
    json.key("id");
    write(json, snippet.id);
    json.key("trigger");
    json.string(snippet.trigger);
    json.endObject();
}

void write(JsonWriter &json, const AppSettings &settings) {
    json.beginObject();
    json.key("autoPaste");
    json.boolean(settings.autoPaste);
    json.key("languageIdentifier");
    json.string(settings.languageIdentifier);
    json.key("removeFillers");
    json.boolean(settings.removeFillers);
    json.key("smartPunctuation");
    json.boolean(settings.smartPunctuation);
    json.endObject();
}

template <typename Record>
void write(JsonWriter &json, const QList<Record> &records) {
    json.beginArray();
    for (const Record &record : records)
        write(json, record);
    json.endArray();
}

// --- Reading

/// Whether the text has a digit, hexadecimal where told so, wherever the pattern has a zero, and
/// what the pattern has elsewhere.
bool hasForm(const QString &text, QLatin1StringView pattern, bool isHexadecimal) {
    if (text.size() != pattern.size())
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        const bool isDigit =
            (unit >= u'0' && unit <= u'9') ||
            (isHexadecimal && ((unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F')));
        if (pattern[i] == u'0' ? !isDigit : unit != pattern[i])
            return false;
    }
    return true;
}

QDateTime readDate(JsonReader &json) {
    const QString text = json.readString();
    const auto number = [&text](qsizetype start, qsizetype size) {
        int value = 0;
        for (const QChar digit : QStringView(text).sliced(start, size))
            value = 10 * value + (digit.unicode() - u'0');
        return value;
    };
    if (hasForm(text, datePattern, false)) {
        const year_month_day day(year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                                 std::chrono::day(static_cast<unsigned>(number(8, 2))));
        const int hour = number(11, 2), minute = number(14, 2), second = number(17, 2);
        if (day.ok() && hour < 24 && minute < 60 && second < 60) {
            const sys_seconds time =
                sys_days(day) + hours(hour) + minutes(minute) + seconds(second);
            return QDateTime::fromMSecsSinceEpoch(milliseconds(time.time_since_epoch()).count(),
                                                  Qt::UTC);
        }
    }
    json.failAtValue(QStringLiteral("is not a date such as “2026-03-14T09:26:53Z”"));
}

QUuid readUuid(JsonReader &json) {
    const QString text = json.readString();
    if (!hasForm(text, uuidPattern, true))
        json.failAtValue(QStringLiteral("is not a UUID"));
    return QUuid(text);
}

template <typename Record>
Record read(JsonReader &json);

template <>
TranscriptRecord read(JsonReader &json) {
    TranscriptRecord record{.id = {}, .createdAt = {}, .text = {}, .duration = 0};
    json.readObject(JsonReader::required("createdAt", [&] { record.createdAt = readDate(json); }),
                    JsonReader::required("duration", [&] { record.duration = json.readNumber(); }),
                    JsonReader::required("id", [&] { record.id = readUuid(json); }),
                    JsonReader::required("text", [&] { record.text = json.readString(); }));
    return record;
}

template <>
VocabularyEntry read(JsonReader &json) {
    QUuid id;
    QString phrase, replacement;
    QStringList aliases;
    const auto readAliases = [&] {
        if (!json.readNull())
            json.readArray([&] { aliases.append(json.readString()); });
    };
    json.readObject(JsonReader::optional("aliases", readAliases),
                    JsonReader::required("id", [&] { id = readUuid(json); }),
                    JsonReader::required("phrase", [&] { phrase = json.readString(); }),
                    JsonReader::required("replacement", [&] { replacement = json.readString(); }));
    return VocabularyEntry(phrase, replacement, aliases, id);
}

template <>
Snippet read(JsonReader &json) {
    Snippet snippet{.id = {}, .trigger = {}, .content = {}};
    json.readObject(JsonReader::required("content", [&] { snippet.content = json.readString(); }),
                    JsonReader::required("id", [&] { snippet.id = readUuid(json); }),
                    JsonReader::required("trigger", [&] { snippet.trigger = json.readString(); }));
    return snippet;
}

template <>
AppSettings read(JsonReader &json) {
    AppSettings settings;
    json.readObject(
        JsonReader::required("autoPaste", [&] { settings.autoPaste = json.readBoolean(); }),
        JsonReader::required("languageIdentifier",
                             [&] { settings.languageIdentifier = json.readString(); }),
        JsonReader::required("removeFillers", [&] { settings.removeFillers = json.readBoolean(); }),
        JsonReader::required("smartPunctuation",
                             [&] { settings.smartPunctuation = json.readBoolean(); }));
    return settings;
}

template <typename Record>
void read(JsonReader &json, QList<Record> &records) {
    json.readArray([&] { records.append(read<Record>(json)); });
}

} // namespace

void encodeLibrary(const AppSnapshot &snapshot, const ByteSink &sink) {
    JsonWriter json(sink);
    json.beginObject();
    json.key("history");
    write(json, snapshot.history);
    json.key("schemaVersion");
    json.integer(snapshot.schemaVersion);
    json.key("scratchpad");
    json.string(snapshot.scratchpad);
    json.key("settings");
    write(json, snapshot.settings);
    json.key("snippets");
    write(json, snapshot.snippets);
    json.key("vocabulary");
    write(json, snapshot.vocabulary);
    json.endObject();
    json.finish();
}

QByteArray encodeLibrary(const AppSnapshot &snapshot) {
    QByteArray text;
    encodeLibrary(snapshot, [&text](QByteArrayView bytes) { text += bytes; });
    return text;
}

AppSnapshot decodeLibrary(const QByteArray &bytes) {
    JsonReader json(bytes);
    AppSnapshot snapshot;
    json.readObject(
        JsonReader::required("history", [&] { read(json, snapshot.history); }),
        JsonReader::required("schemaVersion", [&] { snapshot.schemaVersion = json.readInteger(); }),
        JsonReader::required("scratchpad", [&] { snapshot.scratchpad = json.readString(); }),
        JsonReader::required("settings", [&] { snapshot.settings = read<AppSettings>(json); }),
        JsonReader::required("snippets", [&] { read(json, snapshot.snippets); }),
        JsonReader::required("vocabulary", [&] { read(json, snapshot.vocabulary); }));
    json.finish();
    return snapshot;
}

} // namespace lorvane
