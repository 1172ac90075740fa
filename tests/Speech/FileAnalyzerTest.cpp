#include "Speech/Abandoned.h"
#include "Speech/AnalysisListener.h"
#include "Speech/DecodedAudio.h"
#include "Speech/FileAnalysis.h"
#include "Speech/Prompts.h"
#include "Speech/RealEngine.h"
#include "Speech/SpeechListener.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <QFile>

#include <future>

#include <malloc.h>

namespace lorvane {
namespace {

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
    analyze(writeAudio(speech(3).first)); // loads the models
    for (const int milliseconds : {0, 10, 40, 100, 200, 400, 700, 1100}) {
        std::promise<void> gone;
        // What the analysis holds goes when it stops.
        std::shared_ptr<void> held(nullptr, [&gone](void *) { gone.set_value(); });
        AnalysisListener listener;
        const auto analyzer = makeAnalyzer();
        listener.start(*analyzer, path, [held = std::move(held)] {});
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable().wait_for(lock, std::chrono::milliseconds(milliseconds));
        analyzer->cancelAndFinishNow();
        EXPECT_EQ(listener.heard().ends, 1);
        gone.get_future().wait();
        EXPECT_FALSE(listener.heard().error);
        EXPECT_EQ(listener.heard().ends, 1);
        EXPECT_EQ(listener.heard().resultsAfterTheEnd, 0);
    }
}

// Every run of a model looks whether it is still wanted, and OnnxRuntimeTest shows that a run in
// progress ends: so it is never longer than one operation of a model until an analysis is over.
TEST(FileAnalyzer, RunsNoModelOnceItIsAbandoned) {
    RealEngine real(QStringLiteral("tiny"));
    SndfileAudioFile audioFile;
    const auto file = audioFile.openForReading(writeAudio(speech(40).first));
    FileAnalysis analysis(file->format(), real.engine, {});
    std::stop_source stop;
    int results = 0;
    EXPECT_THROW(analysis.finish(
                     *file,
                     [&](const SpeechAnalysisResult &) {
                         ++results;
                         stop.request_stop();
                     },
                     stop.get_token()),
                 Abandoned);
    EXPECT_EQ(results, 1);
    EXPECT_EQ(analysis.settledCount(), 1U);
    EXPECT_THROW(analysis.finish(
                     *file, [](const SpeechAnalysisResult &) {}, stop.get_token()),
                 Abandoned);
    EXPECT_EQ(analysis.settledCount(), 1U) << "it went on";
}

TEST(FileAnalyzer, EndsAtOnceWhileAModelIsLoaded) {
    const QString path = writeAudio(speech(10).first);
    SndfileAudioFile audioFile;
    OnDeviceSpeech speech(audioFile, QStringLiteral(LORVANE_MODELS));
    for (int i = 0; i < 3; ++i) {
        AnalysisListener listener;
        const auto analyzer = speech.makeAnalyzer(u"en-US"_qs, {});
        listener.start(*analyzer, path);
        analyzer->cancelAndFinishNow();
        EXPECT_EQ(listener.heard().ends, 1);
    }
    AnalysisListener listener;
    const auto analyzer = speech.makeAnalyzer(u"en-US"_qs, {});
    listener.start(*analyzer, path);
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_FALSE(listener.heard().results.empty()) << "what was abandoned stands in the way";
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

TEST(FileAnalyzer, KeepsNothingOfAStretchForTheNext) {
    RealEngine real(u"tiny"_qs);
    const QString path = writeAudio(speech(50).first);
    qint64 freed = 0;
    std::size_t count = 0;
    real.run([&](const std::stop_token &stop) {
        SndfileAudioFile audioFile;
        const auto file = audioFile.openForReading(path);
        FileAnalysis analysis(file->format(), real.engine, {});
        analysis.advance(*file, stop);
        count = analysis.settledCount();
        const qint64 before = residentBytes();
        malloc_trim(0);
        freed = before - residentBytes();
    });
    EXPECT_GE(count, 2U);
    const double megabytes = static_cast<double>(freed) / (1 << 20);
    std::printf("Figure: %.1f MB stay with the C library after a stretch\n", megabytes);
    EXPECT_LT(megabytes, 4);
}

TEST(FileAnalyzer, NeedsNoMoreMemoryForALongRecording) {
    const std::vector<float> sentence = decodedAudio(promptPath(u"vm-nobox"_qs));
    const auto recording = [&](int minutes) {
        std::vector<float> samples;
        for (int i = 0; i < minutes; ++i) {
            samples.insert(samples.end(), sentence.begin(), sentence.end());
            samples.resize(static_cast<std::size_t>(i + 1) * 60 * sampleRate);
        }
        return writeAudio(samples);
    };
    const QString shortPath = recording(1);
    const QString longPath = recording(12);
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
    EXPECT_EQ(shortCount, 1U);
    EXPECT_EQ(longCount, 12U);
    const double megabytes = static_cast<double>(longPeak - shortPeak) / (1 << 20);
    std::printf("Figure: 12 minutes need %.1f MB more than 1 minute\n", megabytes);
    // What the model's runtime keeps differs by up to 13 MB from run to run.
    EXPECT_LT(megabytes, 21) << "the samples of 11 minutes are 42 MB";
}

} // namespace
} // namespace lorvane
