#include "Speech/OnnxRuntime.h"
#include "Speech/Abandoned.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <future>
#include <thread>

#include <pthread.h>
#include <time.h>

namespace lorvane {
namespace {

// A model is a protocol buffer (https://protobuf.dev/programming-guides/encoding) of the messages
// in https://github.com/onnx/onnx/blob/main/onnx/onnx.proto.

QByteArray varint(qsizetype value) {
    QByteArray bytes;
    for (; value >= 128; value >>= 7)
        bytes += static_cast<char>((value & 127) | 128);
    return bytes + static_cast<char>(value);
}
QByteArray field(int number, const QByteArray &content) {
    return varint(number << 3 | 2) + varint(content.size()) + content;
}
QByteArray field(int number, int value) { return varint(number << 3) + varint(value); }

QByteArray node(const char *operation, const std::vector<const char *> &inputs, const char *output,
                const QByteArray &attribute = {}) {
    QByteArray bytes;
    for (const char *input : inputs)
        bytes += field(1, QByteArray(input));
    return bytes + field(2, QByteArray(output)) + field(4, QByteArray(operation)) + attribute;
}

enum ElementType { aFloat = 1, anInteger = 7, aBool = 9 };
QByteArray scalar(const char *name, ElementType type) {
    const QByteArray noDimensions;
    return field(1, QByteArray(name)) + field(2, field(1, field(1, type) + field(2, noDimensions)));
}

/// A model that never comes to an end by itself: a loop as long as "go" is true.
QByteArray endlessModel() {
    constexpr int graphAttribute = 5;
    const QByteArray body = field(1, node("Identity", {"going"}, "goesOn")) +
                            field(1, node("Identity", {"before"}, "after")) +
                            field(2, QByteArray("body")) + field(11, scalar("count", anInteger)) +
                            field(11, scalar("going", aBool)) +
                            field(11, scalar("before", aFloat)) +
                            field(12, scalar("goesOn", aBool)) + field(12, scalar("after", aFloat));
    const QByteArray attribute =
        field(5, field(1, QByteArray("body")) + field(6, body) + field(20, graphAttribute));
    const QByteArray graph = field(1, node("Loop", {"", "go", "in"}, "out", attribute)) +
                             field(2, QByteArray("endless")) + field(11, scalar("go", aBool)) +
                             field(11, scalar("in", aFloat)) + field(12, scalar("out", aFloat));
    const QByteArray operations = field(1, QByteArray()) + field(2, 13);
    return field(1, 8) + field(7, graph) + field(8, operations);
}

TEST(OnnxRuntime, EndsAModelInTheMiddleOfARunOnceNobodyWaitsForIt) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"endless.onnx"_qs);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(endlessModel());
    file.close();
    OnnxRuntime runtime(1);
    Ort::Session session = runtime.open(path);

    std::stop_source stop;
    std::promise<clockid_t> started;
    std::jthread running([&] {
        clockid_t clock{};
        pthread_getcpuclockid(pthread_self(), &clock);
        started.set_value(clock);
        bool go = true;
        float in = 0;
        std::vector<Ort::Value> inputs;
        inputs.push_back(tensorOf(&go, {}));
        inputs.push_back(tensorOf(&in, {}));
        EXPECT_THROW(run(session, {"go", "in"}, inputs, {"out"}, stop.get_token()), Abandoned);
    });
    // It has computed for so long that it must be within its loop.
    const clockid_t clock = started.get_future().get();
    timespec used{};
    while (clock_gettime(clock, &used) == 0 && used.tv_sec == 0 && used.tv_nsec < 50'000'000)
        std::this_thread::yield();
    stop.request_stop();
    running.join(); // it would never be over
}

} // namespace
} // namespace lorvane
