// Analyses a recording of hours, made of the recordings of some folders in random order with pauses
// of random length, and prints word errors next to those of the parts alone, speed, memory as the
// analysis goes on, and how long it takes to abandon it.

#include "LongRecording.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/DecodedAudio.h"
#include "Speech/FileSamples.h"
#include "Speech/OnDeviceSpeech.h"
#include "Speech/SpeechEngine.h"
#include "Speech/WordErrors.h"
#include "Usage.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <future>
#include <map>
#include <thread>

namespace lorvane {
namespace {

using Results = std::vector<SpeechAnalysisResult>;

/// The errors of the whole. A stretch may end within a part, so all is compared at once.
WordErrors errorsOf(const Results &results, const std::vector<Part> &parts) {
    QStringList said;
    for (const Part &part : parts)
        said += spokenWords(part.clip->transcript);
    QStringList heard;
    for (const SpeechAnalysisResult &result : results)
        heard += spokenWords(result.text);
    return wordErrors(said, heard);
}

/// The model, which hears each part alone.
class PartsAlone {
public:
    explicit PartsAlone(const QString &models)
        : folder_(*ModelFolder::find(models, u"en"_qs)),
          engine_(runtime_, folder_, QDir(models).filePath(u"vad/silero.onnx"_qs)) {}

    /// The errors in the recordings that the parts are made of.
    WordErrors errorsAsRecorded(const std::vector<Part> &parts) {
        std::map<const Clip *, WordErrors> known;
        WordErrors errors;
        for (const Part &part : parts) {
            if (!known.contains(part.clip))
                known[part.clip] = errorsIn(decodedAudio(part.clip->path), *part.clip);
            errors += known[part.clip];
        }
        return errors;
    }

    /// The errors in the parts as they stand in the whole, up to the middles of the pauses.
    WordErrors errorsInPlace(const std::vector<Part> &parts, std::span<const float> whole) {
        const auto borderBefore = [&](std::size_t i) -> std::size_t {
            if (i == 0)
                return 0;
            if (i == parts.size())
                return whole.size();
            const double middle = (parts[i - 1].end + parts[i].start) / 2;
            return static_cast<std::size_t>(middle * SpeechModel::sampleRate);
        };
        WordErrors errors;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::size_t start = borderBefore(i);
            errors += errorsIn(whole.subspan(start, borderBefore(i + 1) - start), *parts[i].clip);
        }
        return errors;
    }

private:
    WordErrors errorsIn(std::span<const float> samples, const Clip &clip) {
        const QString text =
            makeResult(engine_.recognize(samples, fileModel, {}, {}), true).formattedString;
        return wordErrors(spokenWords(clip.transcript), spokenWords(text));
    }

    OnnxRuntime runtime_{1};
    ModelFolder folder_;
    SpeechEngine engine_;
};

void printErrors(const WordErrors &errors, const char *how, const WordErrors &ofParts) {
    std::printf("%.2f%% of %d words wrong (%d), in its parts alone, %s, %.2f%% (%d): %.3f of it\n",
                errors.rate() * 100, errors.wordCount, errors.errors(), how, ofParts.rate() * 100,
                ofParts.errors(), errors.rate() / ofParts.rate());
    std::fflush(stdout);
}

/// Analyses the file and gives its results; prints the memory on the way.
Results analyze(OnDeviceSpeech &speech, const QString &path, double minutes) {
    Results results;
    double printAt = 0;
    std::promise<std::optional<QString>> end;
    const auto analyzer = speech.makeAnalyzer(u"en"_qs, {});
    analyzer->start(
        path,
        [&](const SpeechAnalysisResult &result) {
            results.push_back(result);
            if (result.start >= printAt) {
                std::printf("%6.1f min heard, %.0f MB\n", result.start / 60,
                            memoryMegabytes("VmRSS"));
                std::fflush(stdout);
                printAt += minutes * 60 / 8;
            }
        },
        [&](const std::optional<QString> &error) { end.set_value(error); });
    if (const std::optional<QString> error = end.get_future().get())
        throw std::runtime_error(error->toStdString());
    return results;
}

/// Abandons analyses after random times, and prints how long it takes until nothing of them is
/// left.
void abandon(OnDeviceSpeech &speech, const QString &path, int times, std::mt19937 &random) {
    std::vector<double> seconds;
    std::vector<double> processor;
    for (int i = 0; i < times; ++i) {
        std::promise<void> gone;
        // What the analysis holds goes when it has stopped.
        std::shared_ptr<void> held(nullptr, [&gone](void *) { gone.set_value(); });
        const auto analyzer = speech.makeAnalyzer(u"en"_qs, {});
        analyzer->start(
            path, [held = std::move(held)](const SpeechAnalysisResult &) {},
            [](const std::optional<QString> &) {});
        std::this_thread::sleep_for(
            std::chrono::duration<double>(std::uniform_real_distribution(0.0, 5.0)(random)));
        const auto start = SteadyClock::now();
        const double processorStart = processorSeconds();
        analyzer->cancelAndFinishNow();
        gone.get_future().wait();
        seconds.push_back(secondsSince(start));
        processor.push_back(processorSeconds() - processorStart);
    }
    const auto print = [](const char *what, std::vector<double> values) {
        std::sort(values.begin(), values.end());
        std::printf("abandoned %zu times: all over %.1f ms of %s later, %.1f ms at worst\n",
                    values.size(), 1000 * values[values.size() / 2], what, 1000 * values.back());
    };
    print("time", seconds);
    print("processor", processor);
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"folders"_qs, u"recordings with a clips.tsv"_qs);
    parser.addOption({u"minutes"_qs, u"the length of the recording"_qs, u"count"_qs, u"120"_qs});
    parser.addOption({u"seed"_qs, u"of the order and the pauses"_qs, u"number"_qs, u"1"_qs});
    parser.addOption(
        {u"abandon"_qs, u"begin to analyse it so often more"_qs, u"times"_qs, u"0"_qs});
    parser.process(application);
    if (parser.positionalArguments().isEmpty())
        parser.showHelp(1);
    const std::vector<Clip> clips = readSpeech(parser.positionalArguments());
    const double minutes = parser.value(u"minutes"_qs).toDouble();
    std::mt19937 random(parser.value(u"seed"_qs).toUInt());
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording.caf"_qs);
    SndfileAudioFile audioFile;
    const std::vector<Part> parts = writeRecording(audioFile, path, clips, 60 * minutes, random);

    const QString models = OnDeviceSpeech::installedModelsFolder();
    Results results;
    {
        OnDeviceSpeech speech(audioFile, models);
        resetPeak();
        const double before = memoryMegabytes("VmRSS");
        const auto start = SteadyClock::now();
        const double processorStart = processorSeconds();
        results = analyze(speech, path, minutes);
        const double processor = processorSeconds() - processorStart;
        std::printf("%.1f minutes in %.1f s, %.1f s of processor: %.4f of real time\n",
                    parts.back().end / 60, secondsSince(start), processor,
                    processor / parts.back().end);
        std::printf("%.0f MB at the peak, %.0f MB before the models were loaded\n", peakMegabytes(),
                    before);
        if (const int times = parser.value(u"abandon"_qs).toInt())
            abandon(speech, path, times, random);
    }
    const WordErrors errors = errorsOf(results, parts);
    PartsAlone alone(models);
    printErrors(errors, "as recorded", alone.errorsAsRecorded(parts));
    const std::vector<float> whole = readSamples(audioFile, path, {});
    printErrors(errors, "as they stand in it", alone.errorsInPlace(parts, whole));
    return 0;
}

} // namespace
} // namespace lorvane

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    try {
        return lorvane::runBenchmark(application);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "long-file: %s\n", error.what());
        return 1;
    }
}
