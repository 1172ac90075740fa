#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"
#include "Speech/Sounds.h"
#include "Speech/SpeechListener.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cmath>
#include <random>

namespace lorvane {
namespace {

constexpr std::size_t sampleRate = 16000;

const std::vector<float> &sentence() {
    static const std::vector<float> samples = decodedAudio(promptPath(u"vm-nobox"_qs));
    return samples;
}

// What it says, but for the one article that even people hear differently.
bool isSentence(const QString &text) {
    const QString said =
        u"you cannot reply to this message because the sender does not have a mailbox"_qs;
    return wordErrors(spokenWords(said), spokenWords(text)).errors() <= 1;
}

std::vector<float> scaled(std::vector<float> samples, float peak) {
    float highest = 0;
    for (const float sample : samples)
        highest = std::max(highest, std::abs(sample));
    for (float &sample : samples)
        sample *= peak / highest;
    return samples;
}

std::vector<float> noise(double seconds, float level) {
    std::mt19937 random(1);
    std::normal_distribution<float> distribution(0, level);
    std::vector<float> samples(static_cast<std::size_t>(seconds * sampleRate));
    std::generate(samples.begin(), samples.end(), [&] { return distribution(random); });
    return samples;
}

std::vector<float> joined(const std::vector<std::vector<float>> &parts) {
    std::vector<float> samples;
    for (const std::vector<float> &part : parts)
        samples.insert(samples.end(), part.begin(), part.end());
    return samples;
}

std::vector<float> silence(double seconds) {
    return std::vector<float>(static_cast<std::size_t>(seconds * sampleRate));
}

void expectTimesInside(const SpeechResult &result, double duration) {
    double last = 0;
    qsizetype location = 0;
    for (const SpeechSegment &segment : result.segments) {
        EXPECT_GE(segment.timestamp, last) << qPrintable(segment.substring);
        EXPECT_GE(segment.duration, 0) << qPrintable(segment.substring);
        EXPECT_LE(segment.timestamp + segment.duration, duration + 1e-6)
            << qPrintable(segment.substring);
        EXPECT_EQ(segment.location, location);
        EXPECT_EQ(result.formattedString.mid(location, segment.substring.size()),
                  segment.substring);
        last = segment.timestamp;
        location += segment.substring.size() + 1;
    }
}

TEST(FileSpeech, HearsStudioPromptsWithFewErrors) {
    ASSERT_GE(prompts().size(), 100U) << "asterisk-core-sounds-en-g722 is missing";
    WordErrors errors;
    double audioSeconds = 0;
    int count = 0;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < prompts().size(); i += 3) {
        const Prompt &prompt = prompts()[i];
        const std::vector<float> samples = decodedAudio(prompt.path);
        const SpeechListener::Heard heard = recognizeSamples(samples);
        ASSERT_TRUE(heard.isFinal()) << qPrintable(heard.error.value_or(QString()));
        ASSERT_EQ(heard.results.size(), 1U);
        const double duration = static_cast<double>(samples.size()) / sampleRate;
        expectTimesInside(heard.results.back(), duration);
        errors += wordErrors(spokenWords(prompt.transcript), spokenWords(heard.text()));
        audioSeconds += duration;
        ++count;
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("Figure: the bare recogniser on %d prompts, %d words: %.2f%% wrong; "
                "%.0f s of audio in %.1f s\n",
                count, errors.wordCount, errors.rate() * 100, audioSeconds, seconds);
    EXPECT_GE(count, 40);
    EXPECT_LE(errors.rate(), 0.04);
}

TEST(FileSpeech, HearsNothingWhereNobodySpeaks) {
    const std::vector<std::pair<const char *, std::vector<float>>> recordings{
        {"nothing", {}},
        {"one sample", {0.5F}},
        {"silence", silence(10)},
        {"faint noise", noise(10, 0.001F)},
        {"noise", noise(10, 0.1F)},
        {"a beep", decodedAudio(promptPath(u"beep"_qs))},
        {"tones", decodedAudio(promptPath(u"ascending-2tone"_qs))},
        {"noise around a beep",
         joined({noise(2, 0.01F), decodedAudio(promptPath(u"beeperr"_qs)), noise(2, 0.01F)})},
    };
    for (const auto &[name, samples] : recordings) {
        const SpeechListener::Heard heard = recognizeSamples(samples);
        EXPECT_TRUE(heard.isFinal()) << name;
        EXPECT_EQ(heard.text().toStdString(), "") << name;
        EXPECT_FALSE(heard.error) << name;
    }
}

TEST(FileSpeech, InventsNoWordsOnBreathTypingHumAndMusic) {
    for (const Sound &sound : soundsWithoutVoice(sampleRate)) {
        for (const float peak : {0.01F, 0.1F, 0.8F}) {
            const SpeechListener::Heard heard = recognizeSamples(scaled(sound.samples, peak));
            EXPECT_TRUE(heard.isFinal()) << sound.name;
            EXPECT_EQ(heard.text().toStdString(), "") << sound.name << " at " << peak;
        }
    }
}

TEST(FileSpeech, HearsQuietAndLoudVoices) {
    for (const float peak : {0.01F, 0.05F, 1.F}) {
        const SpeechListener::Heard heard = recognizeSamples(scaled(sentence(), peak));
        EXPECT_TRUE(isSentence(heard.text()))
            << "peak " << peak << ": " << qPrintable(heard.text());
    }
}

TEST(FileSpeech, HearsTheSameAtAnyRateAndInStereo) {
    for (const int rate : {22050, 44100, 48000}) {
        const auto samples = decodedAudio(promptPath(u"vm-nobox"_qs), rate);
        const SpeechListener::Heard heard = recognizeSamples(samples, rate, 2);
        EXPECT_TRUE(isSentence(heard.text())) << rate << ": " << qPrintable(heard.text());
    }
}

TEST(FileSpeech, LosesNoWordAfterALongSilenceAndKeepsTheTimes) {
    const SpeechListener::Heard plain = recognizeSamples(sentence());
    const SpeechListener::Heard late =
        recognizeSamples(joined({silence(8), sentence(), silence(6)}));
    ASSERT_TRUE(isSentence(plain.text())) << qPrintable(plain.text());
    ASSERT_TRUE(isSentence(late.text())) << qPrintable(late.text());
    EXPECT_NEAR(late.results[0].segments.last().timestamp,
                plain.results[0].segments.last().timestamp + 8, 0.15);
    EXPECT_NEAR(late.results[0].segments[1].timestamp, plain.results[0].segments[1].timestamp + 8,
                0.15);
}

TEST(FileSpeech, HearsAWholeChunkWithPauses) {
    const SpeechListener::Heard heard = recognizeSamples(joined(
        {sentence(), silence(3), sentence(), silence(5), sentence(), silence(1), sentence()}));
    const QStringList words = spokenWords(heard.text());
    EXPECT_NEAR(static_cast<double>(words.size()), 4 * 14, 2) << qPrintable(heard.text());
    EXPECT_EQ(words.count(u"mailbox"_qs), 4) << qPrintable(heard.text());
}

TEST(FileSpeech, HearsASyntheticVoiceToo) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"voice.wav"_qs);
    ASSERT_EQ(QProcess::execute(u"espeak-ng"_qs,
                                {u"-v"_qs, u"en-gb"_qs, u"-s"_qs, u"150"_qs, u"-w"_qs, path,
                                 u"The meeting has been moved to Thursday afternoon."_qs}),
              0);
    const QString text = recognizeSamples(decodedAudio(path)).text();
    EXPECT_LE(wordErrors(spokenWords(u"The meeting has been moved to Thursday afternoon"_qs),
                         spokenWords(text))
                  .errors(),
              1)
        << qPrintable(text);
}

TEST(FileSpeech, GivesTheSameTextEachTime) {
    const SpeechListener::Heard first = recognizeSamples(sentence());
    const SpeechListener::Heard second = recognizeSamples(sentence());
    EXPECT_EQ(first.text(), second.text());
}

TEST(FileSpeech, ServesTwoRequestsAtOnce) {
    const QString path = writeAudio(sentence());
    const QString otherPath = writeAudio(decodedAudio(promptPath(u"demo-nogo"_qs)));
    SpeechListener one;
    SpeechListener other;
    const auto task = englishRecognizer().recognize(path, SpeechOptions(), one.handler());
    const auto otherTask =
        englishRecognizer().recognize(otherPath, SpeechOptions(), other.handler());
    EXPECT_TRUE(one.waitForEnd());
    EXPECT_TRUE(other.waitForEnd());
    EXPECT_TRUE(isSentence(one.heard().text()));
    EXPECT_TRUE(other.heard().text().contains(u"demonstration"_qs));
}

TEST(FileSpeech, SaysWhyAFileCannotBeRead) {
    SpeechListener listener;
    const auto task = englishRecognizer().recognize(u"/nowhere/recording.caf"_qs, SpeechOptions(),
                                                    listener.handler());
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_TRUE(listener.heard().results.empty());
    EXPECT_FALSE(listener.heard().error.value_or(QString()).isEmpty());
}

TEST(FileSpeech, IsAbandonedWhereverItIs) {
    std::vector<float> samples;
    for (std::size_t i = 0; samples.size() < 30 * sampleRate; ++i) {
        const std::vector<float> prompt = decodedAudio(prompts()[i].path);
        samples.insert(samples.end(), prompt.begin(), prompt.end());
    }
    const QString path = writeAudio(samples);
    recognizeSamples(sentence()); // loads the models, which takes its time
    const auto start = std::chrono::steady_clock::now();
    recognizeSamples(samples);
    const double whole =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    double slowest = 0;
    for (const int milliseconds : {0, 20, 60, 150, 300, 500, 800, 1200}) {
        SpeechListener listener;
        const auto task = englishRecognizer().recognize(path, SpeechOptions(), listener.handler());
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable().wait_for(lock, std::chrono::milliseconds(milliseconds));
        const bool wasRunning = !listener.heard().isFinal();
        const auto cancelled = std::chrono::steady_clock::now();
        task->cancel();
        ASSERT_TRUE(listener.waitFor(
            [](const SpeechListener::Heard &heard) { return heard.handlerIsGone; }));
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - cancelled).count();
        std::printf("cancelled after %4d ms: over %5.1f ms later\n", milliseconds, seconds * 1000);
        slowest = std::max(slowest, seconds);
        if (wasRunning) {
            EXPECT_TRUE(listener.heard().results.empty());
            EXPECT_FALSE(listener.heard().error);
        }
    }
    EXPECT_LT(slowest, whole / 2) << "it went on to the end";
}

TEST(FileSpeech, IsCancelledByTheEndOfItsTask) {
    SpeechListener listener;
    englishRecognizer().recognize(writeAudio(sentence()), SpeechOptions(), listener.handler());
    ASSERT_TRUE(
        listener.waitFor([](const SpeechListener::Heard &heard) { return heard.handlerIsGone; }));
    EXPECT_TRUE(listener.heard().results.empty());
}

TEST(FileSpeech, EndsWithItsSpeechWhileItRuns) {
    SpeechListener listener;
    SndfileAudioFile audioFile;
    const QString path = writeAudio(sentence());
    std::unique_ptr<SpeechTask> task;
    {
        OnDeviceSpeech speech(audioFile, QStringLiteral(LORVANE_MODELS));
        speech.preload();
        task = speech.makeRecognizer(u"en-GB"_qs)
                   ->recognize(path, SpeechOptions(), listener.handler());
    }
    EXPECT_TRUE(listener.heard().handlerIsGone);
    task->cancel();
}

TEST(FileSpeech, SaysThatAModelIsDamaged) {
    // A folder of the right shape whose encoder is no model.
    QTemporaryDir folder;
    const QDir models(folder.path());
    ASSERT_TRUE(models.mkpath(u"vad"_qs));
    const QDir real(QStringLiteral(LORVANE_MODELS));
    ASSERT_TRUE(
        QFile::copy(real.filePath(u"vad/silero.onnx"_qs), models.filePath(u"vad/silero.onnx"_qs)));
    QProcess copy;
    ASSERT_EQ(QProcess::execute(u"cp"_qs, {u"-r"_qs, real.filePath(u"en"_qs), models.path()}), 0);
    const QString encoder = models.filePath(u"en/base/encoder.onnx"_qs);
    const qint64 size = QFileInfo(encoder).size();
    QFile file(encoder);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(size, 'x'));
    file.close();

    SndfileAudioFile audioFile;
    OnDeviceSpeech speech(audioFile, folder.path());
    SpeechListener listener;
    const auto task = speech.makeRecognizer(u"en-US"_qs)
                          ->recognize(writeAudio(sentence()), SpeechOptions(), listener.handler());
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_TRUE(listener.heard().error.value_or(QString()).contains(encoder));

    QFile::remove(encoder);
    EXPECT_FALSE(OnDeviceSpeech(audioFile, folder.path()).makeRecognizer(u"en-US"_qs));
}

} // namespace
} // namespace lorvane
