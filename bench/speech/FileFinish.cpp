// Measures what a user waits for after a dictation: the analysis of the whole recording, next to
// the bare model's time on the same samples. Prints the stretches with their times.

#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/DecodedAudio.h"
#include "Speech/OnDeviceSpeech.h"
#include "Speech/SpeechEngine.h"
#include "Speech/WordErrors.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

namespace lorvane {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int sampleRate = 48000;

double secondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

using Results = std::vector<SpeechAnalysisResult>;

struct Models {
    Models(const QString &folder, const QString &language)
        : speech(audioFile, folder), locale(language) {
        const std::optional<ModelFolder> model = ModelFolder::find(folder, language);
        if (!model)
            throw std::runtime_error("there is no model: run scripts/fetch-speech");
        bare = std::make_unique<SpeechEngine>(runtime, *model,
                                              QDir(folder).filePath(u"vad/silero.onnx"_qs));
        bare->load(fileModel);
        recognizer = speech.makeRecognizer(locale);
    }

    SndfileAudioFile audioFile;
    OnnxRuntime runtime{1};
    std::unique_ptr<SpeechEngine> bare;
    OnDeviceSpeech speech;
    QString locale;
    std::shared_ptr<SpeechRecognizer> recognizer;
};

/// The stretches of a recording, and the seconds that they took.
std::pair<Results, double> analyze(Models &models, const QString &path) {
    Results results;
    std::promise<std::optional<QString>> end;
    const auto start = SteadyClock::now();
    const auto analyzer = models.speech.makeAnalyzer(models.locale, {});
    analyzer->start(
        path, [&](const SpeechAnalysisResult &result) { results.push_back(result); },
        [&](const std::optional<QString> &error) { end.set_value(error); });
    if (const std::optional<QString> error = end.get_future().get())
        throw std::runtime_error(error->toStdString());
    return {results, secondsSince(start)};
}

double bareSeconds(Models &models, std::span<const float> samples) {
    const auto start = SteadyClock::now();
    const double duration = static_cast<double>(samples.size()) / SpeechModel::sampleRate;
    models.bare->recognizeStretch(samples, {0, duration}, fileModel, {}, {}, Search::greedy);
    return secondsSince(start);
}

void write(Models &models, const QString &path, const std::vector<float> &samples, int times) {
    const auto writer = models.audioFile.openForWriting(path, {sampleRate, 1});
    for (int i = 0; i < times; ++i)
        writer->write({samples.data(), static_cast<qsizetype>(samples.size()), 1});
}

/// Records the samples at the pace of speech, with a live text, while the file is followed.
std::pair<Results, double> dictate(Models &models, const QString &path,
                                   const std::vector<float> &samples) {
    constexpr std::size_t bufferSize = 2048;
    auto writer = models.audioFile.openForWriting(path, {sampleRate, 1});
    const auto following = models.speech.followRecording(path, models.locale, {});
    std::shared_ptr<SpeechBufferRequest> request;
    std::unique_ptr<SpeechTask> live;
    auto due = SteadyClock::now();
    auto rotation = due;
    for (std::size_t i = 0; i < samples.size(); i += bufferSize) {
        if (due >= rotation) {
            rotation += std::chrono::seconds(30);
            request = models.recognizer->makeBufferRequest({sampleRate, 1}, SpeechOptions());
            live = models.recognizer->recognize(request, [](const auto &, const auto &) {});
        }
        due += std::chrono::microseconds(1'000'000LL * bufferSize / sampleRate);
        std::this_thread::sleep_until(due);
        const auto count = static_cast<qsizetype>(std::min(bufferSize, samples.size() - i));
        writer->write({samples.data() + i, count, 1});
        request->append({samples.data() + i, count, 1});
    }
    live->cancel();
    writer.reset();
    return analyze(models, path);
}

bool areEqual(const Results &results, const Results &others) {
    return std::equal(results.begin(), results.end(), others.begin(), others.end(),
                      [](const SpeechAnalysisResult &a, const SpeechAnalysisResult &b) {
                          return a.text == b.text && a.start == b.start && a.duration == b.duration;
                      });
}

void print(const char *what, const std::vector<double> &seconds, const std::vector<double> &bare) {
    if (seconds.empty())
        return;
    std::printf("%-34s %6.3f s", what, median(seconds));
    if (!bare.empty())
        std::printf(", %.2f of the bare model's", median(seconds) / median(bare));
    std::printf("\n");
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"recording"_qs, u"an audio file"_qs);
    parser.addOption({u"transcript"_qs, u"what it says"_qs, u"file"_qs});
    parser.addOption({u"times"_qs, u"repeat it within the file"_qs, u"count"_qs, u"1"_qs});
    parser.addOption({u"runs"_qs, u"do it so often"_qs, u"count"_qs, u"1"_qs});
    parser.addOption({u"dictate"_qs, u"record it at the pace of speech, too"_qs});
    parser.addOption({u"models"_qs, u"the folder of the models"_qs, u"folder"_qs,
                      OnDeviceSpeech::installedModelsFolder()});
    parser.addOption({u"language"_qs, u"such as en"_qs, u"language"_qs, u"en"_qs});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    const QString recording = parser.positionalArguments().first();
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording.caf"_qs);
    Models models(parser.value(u"models"_qs), parser.value(u"language"_qs));
    write(models, path, decodedAudio(recording, sampleRate), parser.value(u"times"_qs).toInt());
    const std::vector<float> samples = decodedAudio(recording);

    std::vector<double> bare;
    std::vector<double> fresh;
    std::vector<double> ahead;
    Results results;
    analyze(models, path); // loads what is not loaded yet
    const bool isShort =
        static_cast<double>(samples.size()) < SpeechModel::longestStretch * SpeechModel::sampleRate;
    for (int run = 0; run < parser.value(u"runs"_qs).toInt(); ++run) {
        if (isShort)
            bare.push_back(bareSeconds(models, samples));
        const auto [stretches, seconds] = analyze(models, path);
        fresh.push_back(seconds);
        results = stretches;
        if (parser.isSet(u"dictate"_qs)) {
            const auto [same, finish] = dictate(models, folder.filePath(u"dictation.caf"_qs),
                                                decodedAudio(recording, sampleRate));
            ahead.push_back(finish);
            if (!areEqual(same, results))
                throw std::runtime_error("work done ahead gave another text");
        }
    }
    QStringList texts;
    for (const SpeechAnalysisResult &result : results) {
        std::printf("%8.2f + %5.2f s  %s\n", result.start, result.duration,
                    qPrintable(result.text));
        texts.append(result.text);
    }
    print("the bare model", bare, {});
    print("the finished file", fresh, bare);
    print("the file followed from its start", ahead, bare);
    std::printf("%.0f MB at the peak\n", peakMegabytes());
    if (QFile transcript(parser.value(u"transcript"_qs)); transcript.open(QIODevice::ReadOnly)) {
        const WordErrors errors = wordErrors(spokenWords(QString::fromUtf8(transcript.readAll())),
                                             spokenWords(texts.join(u' ')));
        std::printf("%d of %d words wrong, %.2f%%\n", errors.errors(), errors.wordCount,
                    errors.rate() * 100);
    }
    return 0;
}

} // namespace
} // namespace lorvane

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    try {
        return lorvane::runBenchmark(application);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "file-finish: %s\n", error.what());
        return 1;
    }
}
