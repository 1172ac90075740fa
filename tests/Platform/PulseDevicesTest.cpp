// Microphones and sound servers that change, go, come back and hang.

#include "SoundFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>

namespace lorvane {
namespace {

using testing::Each;
using testing::Le;

TEST_F(PulseAudioInputTest, TheFormatFollowsTheDefaultSource) {
    EXPECT_EQ(await(input.format()), mono);
    sound.control(
        QStringLiteral("load-module module-null-sink sink_name=other rate=44100 channels=2 "
                       "norewinds=1"));
    sound.control(QStringLiteral("load-module module-remap-source source_name=stereo "
                                 "master=other.monitor"));
    sound.control(QStringLiteral("set-default-source stereo"));
    EXPECT_TRUE(waitUntil([&] { return await(input.format()) == AudioFormat{44100, 2}; }));

    Ear ear;
    await(input.start({44100, 2}, ear.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(qint64(ear.heard().size()), 2 * ear.frames());
}

TEST_F(PulseAudioInputTest, TheSoundOfALoudspeakerIsNoMicrophone) {
    sound.control(QStringLiteral("set-default-source virtmic.monitor"));
    EXPECT_TRUE(waitUntil([&] { return !await(input.format()).isUsable(); }));
}

TEST_F(PulseAudioInputTest, ALostMicrophoneDeliversWhatItHeardAndSaysSo) {
    Ear ear;
    QString reason;
    await(input.start(mono, ear.tap(), [&](const QString &text) { reason = text; }));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    loseMicrophone();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The microphone was disconnected."));
    EXPECT_THAT(ear.sizes(), Each(Le(2048)));
    EXPECT_TRUE(waitUntil([&] { return !await(input.format()).isUsable(); }));
}

TEST_F(PulseAudioInputTest, AServerThatEndsIsToldAndAnotherIsReachedByTheNextStart) {
    Ear ear;
    QString reason;
    await(input.start(mono, ear.tap(), [&](const QString &text) { reason = text; }));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.kill();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The sound server has ended."));
    EXPECT_FALSE(await(input.format()).isUsable());
    EXPECT_THAT(errorOf([&] { await(input.start(mono, ear.tap(), nobody())); }).toStdString(),
                testing::StartsWith("The sound server can’t be reached: "));

    sound.start();
    EXPECT_EQ(await(input.format()), mono);
    Ear next;
    await(input.start(mono, next.tap(), nobody()));
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
}

// Each call returns at once; what it promises comes in time, without its server too.
TEST_F(PulseAudioInputTest, AServerThatHangsHoldsNobodyUpAndCatchesUp) {
    Ear ear;
    await(input.start(mono, ear.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.hang();
    const auto inTime = [&](auto function, double most) {
        const auto begin = SteadyClock::now();
        const auto task = Task<>::run(std::move(function));
        EXPECT_LT(millisecondsSince(begin), longestStall);
        EXPECT_TRUE(waitUntil([&] { return task.isDone(); }));
        EXPECT_LT(millisecondsSince(begin), most);
        return errorOf([&] { task.operator co_await().await_resume(); });
    };
    EXPECT_EQ(inTime(input.finish(), 400), QString());
    EXPECT_LT(millisecondsOf([&] { await(input.format()); }), 100);
    EXPECT_EQ(inTime(input.start(mono, ear.tap(), nobody()), 700),
              QStringLiteral("The sound server doesn’t answer."));

    std::optional<PulseAudioInput> other;
    EXPECT_LT(millisecondsOf([&] { other.emplace(clock); }), longestStall);
    AudioFormat format;
    EXPECT_LT(millisecondsOf([&] { format = await(other->format()); }), 800);
    EXPECT_FALSE(format.isUsable());

    sound.goOn();
    Ear next;
    await(input.start(mono, next.tap(), nobody()));
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(await(other->format()), mono);
}

TEST_F(PulseAudioInputTest, AServerThatEndsWhileAStartWaitsForItIsToldByTheStart) {
    Ear ear;
    EXPECT_EQ(await(input.format()), mono);
    sound.hang();
    bool isTold = false;
    const auto starting =
        Task<>::run(input.start(mono, ear.tap(), [&](const QString &) { isTold = true; }));
    waitFor(20ms);
    EXPECT_FALSE(starting.isDone());
    sound.kill();
    ASSERT_TRUE(waitUntil([&] { return starting.isDone(); }));
    EXPECT_EQ(errorOf([&] { starting.operator co_await().await_resume(); }),
              QStringLiteral("The sound server has ended."));
    waitFor(20ms);
    EXPECT_FALSE(isTold);
}

TEST_F(PulseAudioInputTest, ARecordingStaysWithItsMicrophoneWhenAnotherBecomesTheDefault) {
    const Noise noise(sound);
    Ear ear;
    bool hasEnded = false;
    await(input.start(mono, ear.tap(), [&](const QString &) { hasEnded = true; }));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.control(QStringLiteral("load-module module-null-sink sink_name=silent rate=48000 "
                                 "channels=2 norewinds=1"));
    sound.control(QStringLiteral("load-module module-remap-source source_name=other "
                                 "master=silent.monitor"));
    sound.control(QStringLiteral("set-default-source other"));
    ASSERT_TRUE(waitUntil([&] { return await(input.format()) == AudioFormat{48000, 2}; }));
    const qint64 before = ear.frames();
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= before + qint64(3) * 2048; }));
    input.stop();
    EXPECT_FALSE(hasEnded);
    const auto heard = ear.heard();
    const auto silent = std::count(heard.end() - 2048, heard.end(), 0.0F);
    EXPECT_LT(silent, 1024) << "it hears the new one";
}

TEST_F(PulseAudioInputTest, AMicrophoneThatComesBackIsHeardByTheNextStart) {
    Ear ear;
    QString reason;
    await(input.start(mono, ear.tap(), [&](const QString &text) { reason = text; }));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    loseMicrophone();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty() && !await(input.format()).isUsable(); }));
    EXPECT_EQ(errorOf([&] { await(input.start(mono, ear.tap(), nobody())); }),
              QStringLiteral("No microphone input is available. "
                             "Check your audio input in System Settings."));

    sound.control(QStringLiteral("load-module module-remap-source source_name=mic "
                                 "master=virtmic.monitor"));
    sound.control(QStringLiteral("set-default-source mic"));
    ASSERT_TRUE(waitUntil([&] { return await(input.format()) == mono; }));
    Ear next;
    await(input.start(mono, next.tap(), nobody()));
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
}

TEST_F(PulseAudioInputTest, ARecordingGoesOnAfterAServerThatHungForAWhile) {
    Ear ear;
    bool hasEnded = false;
    await(input.start(mono, ear.tap(), [&](const QString &) { hasEnded = true; }));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.hang();
    waitFor(300ms);
    const qint64 before = ear.frames();
    sound.goOn();
    EXPECT_TRUE(waitUntil([&] { return ear.frames() >= before + qint64(4) * 2048; }));
    EXPECT_FALSE(hasEnded);
    input.stop();
}

TEST_F(PulseAudioInputTest, ItCanBeDestroyedWhileItRecordsAndWhileItConnects) {
    for (int i = 0; i < 10; ++i) {
        Ear ear;
        {
            PulseAudioInput other(clock);
            await(other.start(mono, ear.tap(), nobody()));
            waitUntil([&] { return ear.frames() > 0; });
        }
        const qint64 frames = ear.frames();
        { const PulseAudioInput connecting(clock); }
        waitFor(5ms);
        EXPECT_EQ(ear.frames(), frames);
    }
}

TEST(PulseAudioInputWithoutServerTest, NobodyIsHeldUpAndTheErrorSaysWhy) {
    const QTemporaryDir folder;
    Application application;
    const SoundAddress address(QStringLiteral("unix:") + folder.filePath(QStringLiteral("native")));
    AudioFormat format;
    QString error;
    std::optional<PulseAudioInput> input;
    EXPECT_LT(millisecondsOf([&] { input.emplace(application.clock); }), 50);
    EXPECT_LT(millisecondsOf([&] { format = application.await(input->format()); }), 50);
    EXPECT_LT(millisecondsOf([&] {
                  error = errorOf([&] {
                      application.await(input->start(
                          mono, [](const AudioBuffer &) {}, nobody()));
                  });
              }),
              50);
    EXPECT_FALSE(format.isUsable());
    EXPECT_EQ(error, QStringLiteral("The sound server can’t be reached: Connection refused."));
}

} // namespace
} // namespace lorvane
