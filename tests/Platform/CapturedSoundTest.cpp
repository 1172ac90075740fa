// Everything that was played into the microphone stands in the file, however busy the machine is.
// LORVANE_CAPTURE_SECONDS says for how long; scripts/capture-soak asks for ten minutes.

#include "SoundFixture.h"

#include "Platform/Linux/SndfileAudioFile.h"
#include "Services/AudioRecording.h"

#include <QFile>
#include <QTemporaryDir>

namespace lorvane {
namespace {

// As many steps as a float has places for, and none of them silence.
constexpr int period = (1 << 20) - 1;

float step(qint64 frame) { return float(1 + frame % period) / float(1 << 20); }
qint64 frameOf(float sample) { return qint64(sample * float(1 << 20)) - 1; }

/// Plays the count over and over.
class Count {
public:
    explicit Count(const PrivateSound &sound) {
        QFile file(folder_.filePath(QStringLiteral("count")));
        file.open(QIODevice::WriteOnly);
        std::vector<float> samples(period);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = step(qint64(i));
        file.write(reinterpret_cast<const char *>(samples.data()),
                   qint64(samples.size()) * qint64(sizeof(float)));
        file.close();
        const QString play =
            QStringLiteral("while cat %1; do :; done | exec pacat -s %2 -d virtmic --raw "
                           "--format=float32le --rate=48000 --channels=1 --latency-msec=200");
        player_.emplace(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"), play.arg(file.fileName(), sound.address())});
    }

private:
    QTemporaryDir folder_;
    std::optional<PrivateProcess> player_;
};

TEST_F(PulseAudioInputTest, EveryFramePlayedIsInTheFileOnceAndInOrder) {
    const int seconds = std::max(10, qEnvironmentVariableIntValue("LORVANE_CAPTURE_SECONDS"));
    const QTemporaryDir folder;
    SndfileAudioFile files;
    AudioRecording recording(files, mono, folder.path());
    const Count counting(sound);

    QString end;
    await(input.start(
        mono, [&](const AudioBuffer &buffer) { recording.append(buffer); },
        [&](const QString &reason) { end = reason; }));
    const auto start = SteadyClock::now();
    while (millisecondsSince(start) < seconds * 1000 && end.isEmpty())
        waitFor(100ms);
    input.stop();
    recording.close();
    EXPECT_EQ(end, QString());
    EXPECT_EQ(recording.failure(), std::nullopt);

    // The player may have been held up: silence then. But what it played must all be there.
    const auto file = files.openForReading(recording.url);
    std::vector<float> samples(48000);
    qint64 expected = -1;
    qint64 counted = 0;
    qint64 silent = 0;
    qint64 faults = 0;
    while (const qsizetype read = file->read(samples.data(), 48000)) {
        for (qsizetype i = 0; i < read; ++i) {
            if (samples[size_t(i)] == 0) {
                ++silent;
                continue;
            }
            const qint64 frame = frameOf(samples[size_t(i)]);
            faults += expected >= 0 && frame != expected;
            expected = (frame + 1) % period;
            ++counted;
        }
    }
    printf("%.1f s captured in %d s: %lld frames counted, %lld silent, %lld out of order\n",
           double(file->length()) / 48000, seconds, static_cast<long long>(counted),
           static_cast<long long>(silent), static_cast<long long>(faults));
    EXPECT_EQ(faults, 0);
    EXPECT_GT(counted, qint64(seconds) * 48000 / 2);
}

} // namespace
} // namespace lorvane
