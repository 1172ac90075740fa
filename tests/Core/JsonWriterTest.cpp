#include "Core/JsonWriter.h"

#include "Core/JsonReader.h"
#include "Core/Printing.h"

#include <limits>

namespace lorvane {
namespace {

/// What `write` writes.
template <typename Write>
QByteArray written(Write &&write) {
    QByteArray text;
    JsonWriter json([&text](QByteArrayView bytes) { text += bytes; });
    write(json);
    json.finish();
    return text;
}

TEST(JsonWriting, NestsArraysAndObjects) {
    const QByteArray text = written([](JsonWriter &json) {
        json.beginArray();
        json.beginObject();
        json.endObject();
        json.beginArray();
        json.integer(1);
        json.boolean(true);
        json.endArray();
        json.beginObject();
        json.key("a");
        json.beginArray();
        json.endArray();
        json.key("b");
        json.number(0.5);
        json.endObject();
        json.endArray();
    });
    EXPECT_EQ(text.toStdString(), R"([
  {},
  [
    1,
    true
  ],
  {
    "a" : [],
    "b" : 0.5
  }
])");
}

TEST(JsonWriting, OfNumbersReadsBackTheSame) {
    using Limits = std::numeric_limits<double>;
    for (const double value :
         {0.0, -0.0, 1.0, -1.5, 0.1, 1e-7, 123456789.125, 1e21, Limits::max(), Limits::lowest(),
          Limits::min(), Limits::denorm_min(), Limits::epsilon()}) {
        const QByteArray text = written([value](JsonWriter &json) { json.number(value); });
        EXPECT_EQ(JsonReader(text).readNumber(), value) << text.toStdString();
    }
}

TEST(JsonWriting, OfIntegersReadsBackTheSame) {
    using Limits = std::numeric_limits<qint64>;
    for (const qint64 value : {qint64(0), qint64(-1), Limits::max(), Limits::min()}) {
        const QByteArray text = written([value](JsonWriter &json) { json.integer(value); });
        EXPECT_EQ(JsonReader(text).readInteger(), value) << text.toStdString();
    }
}

TEST(JsonWriting, OfEveryUnitReadsBackTheSame) {
    QString text;
    for (int unit = 0; unit <= 0xFFFF; ++unit)
        text += QChar(static_cast<char16_t>(unit));
    const QByteArray json = written([&text](JsonWriter &writer) { writer.string(text); });
    EXPECT_TRUE(json.isValidUtf8());
    EXPECT_TRUE(JsonReader(json).readString() == text);
}

TEST(JsonWriting, EscapesAndEncodesAtEveryPlaceOfAString) {
    const QString longer(40, u'a');
    for (const QString &special :
         {QStringLiteral("/"), QStringLiteral("\""), QStringLiteral("\\"), QStringLiteral("\n"),
          QString(QChar(0x1F)), QString(QChar(0x7F)), QString(QChar(0x80)), QStringLiteral("é"),
          QStringLiteral("日"), QStringLiteral("😀"), QString(QChar(0xD800))}) {
        for (qsizetype place = 0; place <= longer.size(); ++place) {
            QString text = longer;
            text.insert(place, special);
            const QByteArray json = written([&text](JsonWriter &writer) { writer.string(text); });
            EXPECT_TRUE(JsonReader(json).readString() == text) << json.toStdString();
            QByteArray alone = written([&special](JsonWriter &writer) { writer.string(special); });
            alone = alone.mid(1, alone.size() - 2);
            const QByteArray before(place, 'a');
            const QByteArray after(longer.size() - place, 'a');
            EXPECT_EQ(json.toStdString(), ('"' + before + alone + after + '"').toStdString());
        }
    }
}

} // namespace
} // namespace lorvane
