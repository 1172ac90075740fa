#include "Core/LocalizedError.h"
#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"
#include "Speech/SpeechListener.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <QFile>

#include <fstream>
#include <unistd.h>

namespace lorvane {
namespace {

constexpr std::size_t sampleRate = 16000;

/// Collects what an analyser says, and waits for its end.
class AnalysisListener {
public:
    struct Heard {
        std::vector<SpeechAnalysisResult> results;
        std::optional<QString> error;
        int ends = 0;
        int resultsAfterTheEnd = 0;

        QString text() const {
            QStringList texts;
            for (const SpeechAnalysisResult &result : results)
                texts.append(result.text);
            return texts.join(u' ');
        }
    };

    void start(
        SpeechAnalyzer &analyzer, const QString &path, std::function<void()> onResult = [] {}) {
        analyzer.start(
            path,
            [state = state_, onResult](const SpeechAnalysisResult &result) {
                onResult();
                const std::lock_guard lock(state->mutex);
                state->heard.results.push_back(result);
                state->heard.resultsAfterTheEnd += state->heard.ends;
                state->changed.notify_all();
            },
            [state = state_](const std::optional<QString> &error) {
                const std::lock_guard lock(state->mutex);
                state->heard.error = error;
                ++state->heard.ends;
                state->changed.notify_all();
            });
    }

    template <class Condition>
    bool waitFor(Condition condition) {
        std::unique_lock lock(state_->mutex);
        return state_->changed.wait_for(lock, std::chrono::minutes(1),
                                        [&] { return condition(state_->heard); });
    }
    bool waitForEnd() {
        return waitFor([](const Heard &heard) { return heard.ends > 0; });
    }
    Heard heard() const {
        const std::lock_guard lock(state_->mutex);
        return state_->heard;
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        Heard heard;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

std::unique_ptr<SpeechAnalyzer> makeAnalyzer() {
    return realSpeech().makeAnalyzer(u"en-AU"_qs, {});
}

AnalysisListener::Heard analyze(const QString &path) {
    AnalysisListener listener;
    const auto analyzer = makeAnalyzer();
    listener.start(*analyzer, path);
    EXPECT_TRUE(listener.waitForEnd());
    return listener.heard();
}

void append(std::vector<float> &samples, const std::vector<float> &more) {
    samples.insert(samples.end(), more.begin(), more.end());
}

/// Prompts with pauses of a second and a half, and what they say.
std::pair<std::vector<float>, QString> speech(double seconds) {
    std::vector<float> samples;
    QStringList said;
    for (std::size_t i = 0; static_cast<double>(samples.size()) < seconds * sampleRate; i += 3) {
        append(samples, decodedAudio(prompts()[i].path));
        samples.resize(samples.size() + sampleRate * 3 / 2);
        said.append(prompts()[i].transcript);
    }
    return {samples, said.join(u' ')};
}

TEST(FileAnalyzer, GivesTheStretchesOfALongRecordingInOrder) {
    const auto [samples, said] = speech(50);
    const AnalysisListener::Heard heard = analyze(writeAudio(samples));
    EXPECT_FALSE(heard.error);
    EXPECT_GE(heard.results.size(), 2U);
    double end = 0;
    for (const SpeechAnalysisResult &result : heard.results) {
        EXPECT_TRUE(result.isFinal);
        EXPECT_EQ(result.text, result.text.trimmed());
        EXPECT_FALSE(result.text.isEmpty());
        EXPECT_GE(result.start, end);
        EXPECT_GT(result.duration, 0.1);
        EXPECT_LT(result.duration, 33);
        end = result.start + result.duration;
    }
    EXPECT_LE(end, static_cast<double>(samples.size()) / sampleRate);
    EXPECT_LE(wordErrors(spokenWords(said), spokenWords(heard.text())).rate(), 0.1)
        << qPrintable(heard.text());
}

TEST(FileAnalyzer, HearsADictationAsAFileRecognitionDoes) {
    const std::vector<float> sentence = decodedAudio(promptPath(u"vm-nobox"_qs), 48000);
    const QString path = writeAudio(sentence, 48000, 2);
    SpeechListener listener;
    const auto task = englishRecognizer().recognize(path, SpeechOptions(), listener.handler());
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_EQ(analyze(path).text(), listener.heard().text());
}

TEST(FileAnalyzer, HearsNothingInSilenceAndEndsWithoutAnError) {
    for (const std::size_t count : {0U, 1U, 500U, 40U * 16000U}) {
        const AnalysisListener::Heard heard = analyze(writeAudio(std::vector<float>(count)));
        EXPECT_TRUE(heard.results.empty()) << count;
        EXPECT_FALSE(heard.error) << count;
        EXPECT_EQ(heard.ends, 1) << count;
    }
}

TEST(FileAnalyzer, SaysWhyAFileCannotBeHeard) {
    const AnalysisListener::Heard absent = analyze(u"/nowhere/recording.caf"_qs);
    EXPECT_FALSE(absent.error.value_or(QString()).isEmpty());
    EXPECT_EQ(absent.ends, 1);

    const QString path = writeAudio({});
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no audio at all");
    file.close();
    EXPECT_FALSE(analyze(path).error.value_or(QString()).isEmpty());
}

TEST(FileAnalyzer, IsAbandonedWhereverItIs) {
    const QString path = writeAudio(speech(40).first);
    analyze(writeAudio(std::vector<float>(sampleRate))); // loads the models
    double slowest = 0;
    for (const int milliseconds : {0, 10, 40, 100, 200, 400, 700, 1100}) {
        AnalysisListener listener;
        const auto analyzer = makeAnalyzer();
        listener.start(*analyzer, path);
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable().wait_for(lock, std::chrono::milliseconds(milliseconds));
        const auto cancelled = std::chrono::steady_clock::now();
        analyzer->cancelAndFinishNow();
        ASSERT_TRUE(listener.waitForEnd());
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - cancelled).count();
        std::printf("cancelled after %4d ms: over %5.1f ms later\n", milliseconds, seconds * 1000);
        slowest = std::max(slowest, seconds);
        EXPECT_FALSE(listener.heard().error);
        EXPECT_EQ(listener.heard().resultsAfterTheEnd, 0);
    }
    EXPECT_LT(slowest, 1) << "it went on to the end";
}

TEST(FileAnalyzer, EndsOnceWhenItGoes) {
    const QString path = writeAudio(speech(20).first);
    AnalysisListener listener;
    auto analyzer = makeAnalyzer();
    listener.start(*analyzer, path);
    analyzer->cancelAndFinishNow();
    analyzer->cancelAndFinishNow();
    analyzer.reset();
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_EQ(listener.heard().ends, 1);

    AnalysisListener forgotten;
    {
        SndfileAudioFile audioFile;
        OnDeviceSpeech speech(audioFile, QStringLiteral(LORVANE_MODELS));
        const auto first = speech.makeAnalyzer(u"en-US"_qs, {});
        const auto second = speech.makeAnalyzer(u"en-US"_qs, {});
        AnalysisListener().start(*first, path);
        forgotten.start(*second, path);
    }
    EXPECT_EQ(forgotten.heard().ends, 1);
    EXPECT_TRUE(forgotten.heard().results.empty());
}

TEST(FileAnalyzer, IsThereOnlyWhereAModelIsInstalled) {
    EXPECT_FALSE(realSpeech().makeAnalyzer(u"de-DE"_qs, {}));
    SndfileAudioFile audioFile;
    EXPECT_FALSE(OnDeviceSpeech(audioFile, u"/nowhere"_qs).makeAnalyzer(u"en-US"_qs, {}));
}

qint64 residentBytes() {
    std::ifstream statm("/proc/self/statm");
    qint64 total = 0;
    qint64 resident = 0;
    statm >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

TEST(FileAnalyzer, NeedsNoMoreMemoryForALongRecording) {
    const std::vector<float> sentence = decodedAudio(promptPath(u"vm-nobox"_qs));
    const auto recording = [&](int minutes) {
        std::vector<float> samples;
        for (int i = 0; i < minutes * 2; ++i) {
            append(samples, sentence);
            samples.resize(static_cast<std::size_t>(i + 1) * 30 * sampleRate);
        }
        return writeAudio(samples);
    };
    const QString shortPath = recording(1);
    const QString longPath = recording(6);
    const auto peakOf = [](const QString &path) {
        qint64 peak = residentBytes();
        AnalysisListener listener;
        const auto analyzer = makeAnalyzer();
        listener.start(*analyzer, path, [&] { peak = std::max(peak, residentBytes()); });
        EXPECT_TRUE(listener.waitForEnd());
        return std::pair(peak, listener.heard().results.size());
    };
    const auto [shortPeak, shortCount] = peakOf(shortPath);
    const auto [longPeak, longCount] = peakOf(longPath);
    EXPECT_EQ(shortCount, 2U);
    EXPECT_EQ(longCount, 12U);
    const double megabytes = static_cast<double>(longPeak - shortPeak) / (1 << 20);
    std::printf("Figure: 6 minutes need %.1f MB more than 1 minute\n", megabytes);
    EXPECT_LT(megabytes, 6) << "the samples of 5 minutes are 18 MB";
}

} // namespace
} // namespace lorvane
