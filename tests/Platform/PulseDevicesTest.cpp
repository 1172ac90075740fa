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
    EXPECT_EQ(input.format(), mono);
    sound.control(
        QStringLiteral("load-module module-null-sink sink_name=other rate=44100 channels=2 "
                       "norewinds=1"));
    sound.control(QStringLiteral("load-module module-remap-source source_name=stereo "
                                 "master=other.monitor"));
    sound.control(QStringLiteral("set-default-source stereo"));
    EXPECT_TRUE(waitUntil([&] { return input.format() == AudioFormat{44100, 2}; }));

    Ear ear;
    input.start({44100, 2}, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(qint64(ear.heard().size()), 2 * ear.frames());
}

TEST_F(PulseAudioInputTest, TheSoundOfALoudspeakerIsNoMicrophone) {
    sound.control(QStringLiteral("set-default-source virtmic.monitor"));
    EXPECT_TRUE(waitUntil([&] { return !input.format().isUsable(); }));
}

TEST_F(PulseAudioInputTest, ALostMicrophoneDeliversWhatItHeardAndSaysSo) {
    Ear ear;
    QString reason;
    input.start(mono, ear.tap(), [&](const QString &text) { reason = text; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    loseMicrophone();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The microphone was disconnected."));
    EXPECT_THAT(ear.sizes(), Each(Le(2048)));
    EXPECT_TRUE(waitUntil([&] { return !input.format().isUsable(); }));
}

TEST_F(PulseAudioInputTest, AServerThatEndsIsToldAndAnotherIsReachedByTheNextStart) {
    Ear ear;
    QString reason;
    input.start(mono, ear.tap(), [&](const QString &text) { reason = text; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.kill();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_EQ(reason, QStringLiteral("The sound server has ended."));
    EXPECT_FALSE(input.format().isUsable());
    EXPECT_THAT(errorOf([&] { input.start(mono, ear.tap(), nobody()); }).toStdString(),
                testing::StartsWith("The sound server can’t be reached: "));

    sound.start();
    EXPECT_EQ(input.format(), mono);
    Ear next;
    input.start(mono, next.tap(), nobody());
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
}

TEST_F(PulseAudioInputTest, AServerThatHangsHoldsNobodyUpAndCatchesUp) {
    Ear ear;
    input.start(mono, ear.tap(), nobody());
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.hang();
    EXPECT_LT(millisecondsOf([&] { input.stop(); }), 400);
    EXPECT_LT(millisecondsOf([&] { input.format(); }), 100);
    QString error;
    EXPECT_LT(
        millisecondsOf([&] { error = errorOf([&] { input.start(mono, ear.tap(), nobody()); }); }),
        600);
    EXPECT_EQ(error, QStringLiteral("The sound server doesn’t answer."));
    PulseAudioInput other(clock);
    AudioFormat format;
    EXPECT_LT(millisecondsOf([&] { format = other.format(); }), 800);
    EXPECT_FALSE(format.isUsable());

    sound.goOn();
    Ear next;
    input.start(mono, next.tap(), nobody());
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
    EXPECT_EQ(other.format(), mono);
}

TEST_F(PulseAudioInputTest, ARecordingStaysWithItsMicrophoneWhenAnotherBecomesTheDefault) {
    const Noise noise(sound);
    Ear ear;
    bool hasEnded = false;
    input.start(mono, ear.tap(), [&](const QString &) { hasEnded = true; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.control(QStringLiteral("load-module module-null-sink sink_name=silent rate=48000 "
                                 "channels=2 norewinds=1"));
    sound.control(QStringLiteral("load-module module-remap-source source_name=other "
                                 "master=silent.monitor"));
    sound.control(QStringLiteral("set-default-source other"));
    ASSERT_TRUE(waitUntil([&] { return input.format() == AudioFormat{48000, 2}; }));
    const qint64 before = ear.frames();
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= before + 3 * 2048; }));
    input.stop();
    EXPECT_FALSE(hasEnded);
    const auto heard = ear.heard();
    const auto silent = std::count(heard.end() - 2048, heard.end(), 0.0F);
    EXPECT_LT(silent, 1024) << "it hears the new one";
}

TEST_F(PulseAudioInputTest, AMicrophoneThatComesBackIsHeardByTheNextStart) {
    Ear ear;
    QString reason;
    input.start(mono, ear.tap(), [&](const QString &text) { reason = text; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    loseMicrophone();
    ASSERT_TRUE(waitUntil([&] { return !reason.isEmpty() && !input.format().isUsable(); }));
    EXPECT_EQ(errorOf([&] { input.start(mono, ear.tap(), nobody()); }),
              QStringLiteral("There is no microphone."));

    sound.control(QStringLiteral("load-module module-remap-source source_name=mic "
                                 "master=virtmic.monitor"));
    sound.control(QStringLiteral("set-default-source mic"));
    ASSERT_TRUE(waitUntil([&] { return input.format() == mono; }));
    Ear next;
    input.start(mono, next.tap(), nobody());
    EXPECT_TRUE(waitUntil([&] { return next.frames() >= 2048; }));
    input.stop();
}

TEST_F(PulseAudioInputTest, ARecordingGoesOnAfterAServerThatHungForAWhile) {
    Ear ear;
    bool hasEnded = false;
    input.start(mono, ear.tap(), [&](const QString &) { hasEnded = true; });
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= 2048; }));
    sound.hang();
    waitFor(300ms);
    const qint64 before = ear.frames();
    sound.goOn();
    EXPECT_TRUE(waitUntil([&] { return ear.frames() >= before + 4 * 2048; }));
    EXPECT_FALSE(hasEnded);
    input.stop();
}

TEST_F(PulseAudioInputTest, ItCanBeDestroyedWhileItRecordsAndWhileItConnects) {
    for (int i = 0; i < 10; ++i) {
        Ear ear;
        {
            PulseAudioInput other(clock);
            other.start(mono, ear.tap(), nobody());
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
    EXPECT_LT(millisecondsOf([&] { format = input->format(); }), 50);
    EXPECT_LT(millisecondsOf([&] {
                  error = errorOf([&] {
                      input->start(
                          mono, [](const AudioBuffer &) {}, nobody());
                  });
              }),
              50);
    EXPECT_FALSE(format.isUsable());
    EXPECT_EQ(error, QStringLiteral("The sound server can’t be reached: Connection refused."));
}

} // namespace
} // namespace lorvane
