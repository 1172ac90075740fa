#include "Core/JsonWriter.h"

#include "Core/JsonReader.h"
#include "Core/Printing.h"

#include <limits>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

TEST(JsonWriting, NestsArraysAndObjects) {
    JsonWriter json;
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
    EXPECT_EQ(json.takeText().toStdString(), R"([
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
        JsonWriter json;
        json.number(value);
        const QByteArray text = json.takeText();
        EXPECT_EQ(JsonReader(text).readNumber(), value) << text.toStdString();
    }
}

TEST(JsonWriting, OfIntegersReadsBackTheSame) {
    using Limits = std::numeric_limits<qint64>;
    for (const qint64 value : {qint64(0), qint64(-1), Limits::max(), Limits::min()}) {
        JsonWriter json;
        json.integer(value);
        const QByteArray text = json.takeText();
        EXPECT_EQ(JsonReader(text).readInteger(), value) << text.toStdString();
    }
}

TEST(JsonWriting, OfEveryUnitReadsBackTheSame) {
    QString text;
    for (int unit = 0; unit <= 0xFFFF; ++unit)
        text += QChar(static_cast<char16_t>(unit));
    JsonWriter json;
    json.string(text);
    const QByteArray written = json.takeText();
    EXPECT_TRUE(written.isValidUtf8());
    EXPECT_TRUE(JsonReader(written).readString() == text);
}

} // namespace
} // namespace lorvane
