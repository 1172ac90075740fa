// Measures the recogniser on a folder of recordings: word errors, the times of words, speed and
// memory. The folder holds "clips.tsv" with the columns file, seconds, transcript (an empty one:
// nobody speaks) and phrases to listen for (between them "; "), and possibly "align/NAME.json" with
// the words and their times.

#include "Core/LocalizedError.h"
#include "Speech/DecodedAudio.h"
#include "Speech/SpeechEngine.h"
#include "Speech/WordErrors.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace lorvane {
namespace {

using SteadyClock = std::chrono::steady_clock;

double secondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

struct Clip {
    QString path;
    QString transcript;
    QStringList phrases; ///< to listen for
    std::vector<float> samples;
    QJsonArray alignment;
};

std::vector<Clip> readClips(const QDir &folder, const QString &listName) {
    QFile list(folder.filePath(listName));
    if (!list.open(QIODevice::ReadOnly))
        throw LocalizedError(u"There is no %1 in %2"_qs.arg(listName, folder.path()));
    std::vector<Clip> clips;
    list.readLine();
    while (!list.atEnd()) {
        const QStringList columns = QString::fromUtf8(list.readLine()).trimmed().split(u'\t');
        Clip clip{folder.filePath(columns[0]),
                  columns.value(2),
                  columns.value(3).split(u"; "_qs, Qt::SkipEmptyParts),
                  {},
                  {}};
        clip.samples = decodedAudio(clip.path);
        QFile alignment(
            folder.filePath(u"align/%1.json"_qs.arg(QFileInfo(clip.path).completeBaseName())));
        if (alignment.open(QIODevice::ReadOnly))
            clip.alignment = QJsonDocument::fromJson(alignment.readAll()).array();
        clips.push_back(std::move(clip));
    }
    return clips;
}

/// How far the starts and ends of words are from where they should be, for the words that both
/// sides have in the same order.
void compareTimes(const QList<TimedWord> &heard, const QJsonArray &aligned,
                  std::vector<double> &starts, std::vector<double> &ends) {
    // The longest common subsequence.
    const auto key = [](const QString &word) { return spokenWords(word).join(u' '); };
    const auto rows = static_cast<std::size_t>(heard.size());
    const auto columns = static_cast<std::size_t>(aligned.size());
    std::vector<std::vector<int>> length(rows + 1, std::vector<int>(columns + 1));
    std::vector<QString> said;
    for (const QJsonValue &word : aligned)
        said.push_back(key(word[u"word"].toString()));
    for (std::size_t i = rows; i-- > 0;) {
        const QString word = key(heard[static_cast<qsizetype>(i)].text);
        for (std::size_t j = columns; j-- > 0;) {
            length[i][j] = word == said[j] ? length[i + 1][j + 1] + 1
                                           : std::max(length[i + 1][j], length[i][j + 1]);
        }
    }
    for (std::size_t i = 0, j = 0; i < rows && j < columns;) {
        const TimedWord &word = heard[static_cast<qsizetype>(i)];
        const QJsonValue target = aligned[static_cast<qsizetype>(j)];
        if (key(word.text) == said[j]) {
            starts.push_back(std::abs(word.start - target[u"start"].toDouble()));
            ends.push_back(std::abs(word.end - target[u"end"].toDouble()));
            ++i, ++j;
        } else if (length[i + 1][j] >= length[i][j + 1]) {
            ++i;
        } else {
            ++j;
        }
    }
}

double quantile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

/// How often `phrase` stands in `text`.
int occurrences(const QStringList &text, const QStringList &phrase) {
    int count = 0;
    for (qsizetype i = 0; i + phrase.size() <= text.size(); ++i)
        count += text.mid(i, phrase.size()) == phrase ? 1 : 0;
    return count;
}

/// What became of the phrases of the recordings.
struct PhraseCounts {
    int saidWordCount = 0; ///< in the phrases that were said
    int rightWords = 0;
    int falsePhrases = 0; ///< heard where they were not said

    void add(const Clip &clip, const QString &heard, bool isVerbose) {
        const QStringList saidWords = spokenWords(clip.transcript);
        const QStringList heardWords = spokenWords(heard);
        for (const QString &phrase : clip.phrases) {
            const QStringList words = spokenWords(phrase);
            const int said = occurrences(saidWords, words);
            const int right = std::min(occurrences(heardWords, words), said);
            const int wrong = occurrences(heardWords, words) - right;
            saidWordCount += said * static_cast<int>(words.size());
            rightWords += right * static_cast<int>(words.size());
            falsePhrases += wrong;
            if (isVerbose && wrong)
                std::printf("  not said: %s\n", qPrintable(phrase));
        }
    }
};

void measure(SpeechEngine &engine, const QString &size, const std::vector<Clip> &clips,
             bool withPhrases, bool isVerbose) {
    const auto loadStart = SteadyClock::now();
    engine.load(size);
    const double loadSeconds = secondsSince(loadStart);

    WordErrors errors;
    std::vector<double> starts;
    std::vector<double> ends;
    PhraseCounts phrases;
    int voicelessClips = 0;
    int inventedWords = 0;
    double audioSeconds = 0;
    const double processorStart = processorSeconds();
    const auto start = SteadyClock::now();
    for (const Clip &clip : clips) {
        SpeechOptions options;
        if (withPhrases)
            options.contextualStrings = clip.phrases;
        const QList<TimedWord> words = engine.recognize(clip.samples, size, options, {});
        const QString heard = makeResult(words, true).formattedString;
        const WordErrors clipErrors = wordErrors(spokenWords(clip.transcript), spokenWords(heard));
        errors += clipErrors;
        if (clip.transcript.isEmpty()) {
            ++voicelessClips;
            inventedWords += clipErrors.insertions;
        }
        compareTimes(words, clip.alignment, starts, ends);
        audioSeconds += static_cast<double>(clip.samples.size()) / SpeechModel::sampleRate;
        if (isVerbose && clipErrors.errors()) {
            std::printf("%s\n  said:  %s\n  heard: %s\n",
                        qPrintable(QFileInfo(clip.path).fileName()), qPrintable(clip.transcript),
                        qPrintable(heard));
        }
        phrases.add(clip, heard, isVerbose);
    }
    const double seconds = secondsSince(start);
    std::printf("%-5s %s%5.2f%% of %d words wrong (%d changed, %d inserted, %d lost)",
                qPrintable(size), withPhrases ? "with phrases " : "", errors.rate() * 100,
                errors.wordCount, errors.substitutions, errors.insertions, errors.deletions);
    if (phrases.saidWordCount || phrases.falsePhrases)
        std::printf("; %d of %d words of phrases right, %d phrases not said", phrases.rightWords,
                    phrases.saidWordCount, phrases.falsePhrases);
    if (voicelessClips)
        std::printf("; %d words in %d recordings without a voice", inventedWords, voicelessClips);
    if (!starts.empty()) {
        std::printf("; starts of %zu words off by %.0f/%.0f ms, ends by %.0f/%.0f ms (median/90%%)",
                    starts.size(), quantile(starts, 0.5) * 1000, quantile(starts, 0.9) * 1000,
                    quantile(ends, 0.5) * 1000, quantile(ends, 0.9) * 1000);
    }
    std::printf("; %.1f s of audio in %.2f s (%.2f s of processor), load %.2f s, peak %.0f MB\n",
                audioSeconds, seconds, processorSeconds() - processorStart, loadSeconds,
                peakMegabytes());
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"folder"_qs, u"recordings with a clips.tsv"_qs);
    parser.addOption({u"models"_qs, u"folder of the models"_qs, u"path"_qs,
                      QDir(QCoreApplication::applicationDirPath()).filePath(u"models"_qs)});
    parser.addOption({u"language"_qs, u"language of the recordings"_qs, u"code"_qs, u"en"_qs});
    parser.addOption({u"size"_qs, u"only this model"_qs, u"name"_qs});
    parser.addOption({u"threads"_qs, u"threads of the runtime"_qs, u"count"_qs, u"1"_qs});
    parser.addOption({u"gain"_qs, u"change the level"_qs, u"decibels"_qs, u"0"_qs});
    parser.addOption({u"silence"_qs, u"put silence before and after"_qs, u"seconds"_qs, u"0"_qs});
    parser.addOption({u"list"_qs, u"the list in the folder"_qs, u"name"_qs, u"clips.tsv"_qs});
    parser.addOption({u"only-phrases"_qs, u"don't measure without the phrases"_qs});
    parser.addOption({u"verbose"_qs, u"print each recording with errors"_qs});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);

    const QDir models(parser.value(u"models"_qs));
    const auto folder = ModelFolder::find(models.path(), parser.value(u"language"_qs));
    if (!folder)
        throw LocalizedError(u"There is no model in "_qs + models.path());
    std::vector<Clip> clips =
        readClips(QDir(parser.positionalArguments().first()), parser.value(u"list"_qs));
    const double gain = std::pow(10, parser.value(u"gain"_qs).toDouble() / 20);
    const auto silence =
        static_cast<std::size_t>(parser.value(u"silence"_qs).toDouble() * SpeechModel::sampleRate);
    for (Clip &clip : clips) {
        for (float &sample : clip.samples)
            sample *= static_cast<float>(gain);
        clip.samples.insert(clip.samples.begin(), silence, 0.F);
        clip.samples.insert(clip.samples.end(), silence, 0.F);
        if (silence)
            clip.alignment = {};
    }

    OnnxRuntime runtime(parser.value(u"threads"_qs).toInt());
    SpeechEngine engine(runtime, *folder, models.filePath(u"vad/silero.onnx"_qs));
    const QStringList sizes = parser.isSet(u"size"_qs) ? QStringList{parser.value(u"size"_qs)}
                                                       : QStringList{liveModel, fileModel};
    const bool havePhrases = std::any_of(clips.begin(), clips.end(),
                                         [](const Clip &clip) { return !clip.phrases.isEmpty(); });
    for (const QString &size : sizes) {
        if (!parser.isSet(u"only-phrases"_qs))
            measure(engine, size, clips, false, parser.isSet(u"verbose"_qs));
        if (havePhrases)
            measure(engine, size, clips, true, parser.isSet(u"verbose"_qs));
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
        std::fprintf(stderr, "speech-quality: %s\n", error.what());
        return 1;
    }
}
