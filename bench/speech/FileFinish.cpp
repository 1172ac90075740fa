// Measures what a user waits for after a dictation: the analysis of the whole recording, next to
// the bare model's time on the same samples. Prints the stretches with their times.

#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/DecodedAudio.h"
#include "Speech/FileAnalysis.h"
#include "Speech/OnDeviceSpeech.h"
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

/// The stretches of a recording, and the seconds that they took.
std::pair<std::vector<SpeechAnalysisResult>, double> analyze(const QString &path,
                                                             SpeechEngine &engine) {
    std::vector<SpeechAnalysisResult> results;
    const auto start = SteadyClock::now();
    const std::unique_ptr<AudioFileReader> file = SndfileAudioFile().openForReading(path);
    FileAnalysis analysis(file->format(), engine, {});
    analysis.finish(*file, [&](const SpeechAnalysisResult &result) { results.push_back(result); },
                    {});
    return {results, secondsSince(start)};
}

double bareSeconds(std::span<const float> samples, SpeechEngine &engine) {
    const auto start = SteadyClock::now();
    const double duration = static_cast<double>(samples.size()) / SpeechModel::sampleRate;
    engine.recognizeStretch(samples, {0, duration}, fileModel, {}, {});
    return secondsSince(start);
}

/// Writes the samples `times` times, one after another.
void write(const QString &path, const std::vector<float> &samples, int times) {
    const auto writer = SndfileAudioFile().openForWriting(path, {sampleRate, 1});
    for (int i = 0; i < times; ++i)
        writer->write({samples.data(), static_cast<qsizetype>(samples.size()), 1});
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"recording"_qs, u"an audio file"_qs);
    parser.addOption({u"transcript"_qs, u"what it says"_qs, u"file"_qs});
    parser.addOption({u"times"_qs, u"repeat it within the file"_qs, u"count"_qs, u"1"_qs});
    parser.addOption({u"runs"_qs, u"analyse it so often"_qs, u"count"_qs, u"1"_qs});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    const QString recording = parser.positionalArguments().first();
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording.caf"_qs);
    write(path, decodedAudio(recording, sampleRate), parser.value(u"times"_qs).toInt());
    std::vector<float> samples = decodedAudio(recording);

    OnnxRuntime runtime(1);
    const QString models = OnDeviceSpeech::installedModelsFolder();
    const std::optional<ModelFolder> model = ModelFolder::find(models, u"en"_qs);
    if (!model)
        throw std::runtime_error("there is no model: run scripts/fetch-speech");
    SpeechEngine engine(runtime, *model, QDir(models).filePath(u"vad/silero.onnx"_qs));
    engine.load(fileModel);

    std::vector<double> bare;
    std::vector<double> whole;
    std::vector<SpeechAnalysisResult> results;
    const bool isShort =
        static_cast<double>(samples.size()) < SpeechModel::longestStretch * SpeechModel::sampleRate;
    for (int run = 0; run < parser.value(u"runs"_qs).toInt(); ++run) {
        if (isShort)
            bare.push_back(bareSeconds(samples, engine));
        const auto [stretches, seconds] = analyze(path, engine);
        whole.push_back(seconds);
        results = stretches;
    }
    QStringList texts;
    for (const SpeechAnalysisResult &result : results) {
        std::printf("%8.2f + %5.2f s  %s\n", result.start, result.duration,
                    qPrintable(result.text));
        texts.append(result.text);
    }
    if (isShort)
        std::printf("the bare model %.3f s, ", median(bare));
    std::printf("the whole analysis %.3f s", median(whole));
    if (isShort)
        std::printf(", ratio %.2f", median(whole) / median(bare));
    std::printf("; %.0f MB at the peak\n", peakMegabytes());
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
