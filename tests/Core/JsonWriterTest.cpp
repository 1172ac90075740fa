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

} // namespace
} // namespace lorvane
