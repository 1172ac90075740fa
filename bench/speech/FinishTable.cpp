// What dictations of several lengths cost: the bare recogniser on the whole recording, the analysis
// of the finished file, and the same with the work that was done ahead while it was being recorded.
// Recording is simulated without its pace: the file grows by a second, and what is certain is
// heard. Processor time, so that a busy machine makes little difference.

#include "LongRecording.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/FileAnalysis.h"
#include "Speech/FileSamples.h"
#include "Speech/OnDeviceSpeech.h"
#include "Usage.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <malloc.h>

#include <cstdio>

namespace lorvane {
namespace {

struct Cost {
    double processor = 0;
    double seconds = 0;
    double peak = 0; ///< in megabytes, of the whole process
    QStringList texts;
};

class Stopwatch {
public:
    Stopwatch() {
        malloc_trim(0);
        resetPeak();
    }
    Cost stop(QStringList texts = {}) const {
        return {processorSeconds() - processor_, secondsSince(start_), peakMegabytes(),
                std::move(texts)};
    }

private:
    const double processor_ = processorSeconds();
    const SteadyClock::time_point start_ = SteadyClock::now();
};

class Machine {
public:
    explicit Machine(const QString &models)
        : engine_(std::make_shared<KeptEngine>(
              std::make_unique<SpeechEngine>(runtime_, *ModelFolder::find(models, u"en"_qs),
                                             QDir(models).filePath(u"vad/silero.onnx"_qs)),
              fileModel, worker_)) {
        engine_->use().load(fileModel);
    }

    SndfileAudioFile audioFile;

    Cost bare(const QString &path) {
        const Stopwatch watch;
        const std::vector<float> samples = readSamples(audioFile, path, {});
        engine_->use().recognize(samples, fileModel, {}, {}, Search::greedy);
        return watch.stop();
    }

    Cost fresh(const QString &path) {
        const Stopwatch watch;
        const auto file = audioFile.openForReading(path);
        FileAnalysis analysis(file->format(), engine_, {});
        return finish(watch, analysis, *file);
    }

    /// What was done ahead, and what is left to be done.
    std::pair<Cost, Cost> followed(const QString &path, const QString &copy) {
        const auto source = audioFile.openForReading(path);
        const AudioFormat format = source->format();
        const Stopwatch aheadWatch;
        FileAnalysis analysis(format, engine_, {});
        {
            const auto writer = audioFile.openForWriting(copy, format);
            std::vector<float> second(static_cast<std::size_t>(format.sampleRate));
            const auto size = static_cast<qsizetype>(second.size());
            while (const qsizetype count = source->read(second.data(), size)) {
                writer->write({second.data(), count, 1});
                analysis.advance(*audioFile.openForReading(copy), {});
            }
        }
        const Cost ahead = aheadWatch.stop();
        const Stopwatch watch;
        const auto file = audioFile.openForReading(copy);
        if (!analysis.isOf(*file, {}))
            throw std::runtime_error("what was heard ahead is not of this file");
        return {ahead, finish(watch, analysis, *file)};
    }

private:
    static Cost finish(const Stopwatch &watch, FileAnalysis &analysis, AudioFileReader &file) {
        QStringList texts;
        analysis.finish(file,
                        [&](const SpeechAnalysisResult &result) { texts.append(result.text); }, {});
        return watch.stop(texts);
    }

    OnnxRuntime runtime_{1};
    Turns turns_{1};
    RecognitionWorker worker_{turns_, Urgency::ahead};
    std::shared_ptr<KeptEngine> engine_;
};

void print(double length, const char *what, const Cost &cost, const Cost &bare) {
    std::printf("| %7.1f s | %-28s | %8.2f s | %6.2f | %8.2f s | %5.0f MB |\n", length, what,
                cost.processor, cost.processor / bare.processor, cost.seconds, cost.peak);
    std::fflush(stdout);
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"folders"_qs, u"recordings with a clips.tsv"_qs);
    parser.addOption({u"seconds"_qs, u"of the recordings"_qs, u"lengths"_qs, u"5,30,300,3600"_qs});
    parser.process(application);
    if (parser.positionalArguments().isEmpty())
        parser.showHelp(1);
    const std::vector<Clip> clips = readSpeech(parser.positionalArguments());
    const QTemporaryDir folder;
    Machine machine(OnDeviceSpeech::installedModelsFolder());
    std::printf("| recording | what | processor | of the bare | waited | peak |\n"
                "|---|---|---|---|---|---|\n");
    for (const QString &seconds : parser.value(u"seconds"_qs).split(u',')) {
        const QString path = folder.filePath(u"recording.caf"_qs);
        // Clips are of any length: the first order of them that is not much too long.
        double length = 0;
        for (unsigned seed = 1; length == 0 || length > 1.2 * seconds.toDouble(); ++seed) {
            std::mt19937 random(seed);
            length = writeRecording(machine.audioFile, path, clips, seconds.toDouble(), random)
                         .back()
                         .end;
        }
        if (length < 60)
            machine.fresh(path); // the first run pays for what is loaded late
        const Cost fresh = machine.fresh(path);
        const auto [ahead, left] = machine.followed(path, folder.filePath(u"copy.caf"_qs));
        if (left.texts != fresh.texts)
            throw std::runtime_error("work done ahead gave another text");
        const Cost bare = machine.bare(path);
        print(length, "the bare recogniser", bare, bare);
        print(length, "the finished file", fresh, bare);
        print(length, "ahead of its end", ahead, bare);
        print(length, "from the end to the text", left, bare);
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
        std::fprintf(stderr, "finish-table: %s\n", error.what());
        return 1;
    }
}
