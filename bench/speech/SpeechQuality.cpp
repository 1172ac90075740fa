// Measures the recogniser on a folder of recordings: word errors, the times of words, speed and
// memory. The folder holds "clips.tsv" with the columns file, seconds, transcript (an empty one:
// nobody speaks) and phrases to listen for (between them "; "), and possibly "align/NAME.json" with
// the words and their times.

#include "Clips.h"
#include "Core/LocalizedError.h"
#include "Routes.h"
#include "Speech/DecodedAudio.h"
#include "Speech/WordErrors.h"
#include "Usage.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace lorvane {
namespace {

struct LoadedClip : Clip {
    std::vector<float> samples;
    QJsonArray aligned;
};

std::vector<LoadedClip> load(const std::vector<Clip> &clips) {
    std::vector<LoadedClip> loaded;
    for (const Clip &clip : clips)
        loaded.push_back({clip, decodedAudio(clip.path), clip.words()});
    return loaded;
}

/// One after the other, as one long recording with pauses.
LoadedClip joined(const std::vector<LoadedClip> &clips) {
    constexpr std::size_t pause = SpeechModel::sampleRate * 6 / 5;
    LoadedClip whole;
    QStringList said;
    for (const LoadedClip &clip : clips) {
        if (clip.transcript.isEmpty())
            continue;
        whole.samples.insert(whole.samples.end(), clip.samples.begin(), clip.samples.end());
        whole.samples.resize(whole.samples.size() + pause);
        said.append(clip.transcript);
    }
    whole.path = u"all in one"_qs;
    whole.transcript = said.join(u' ');
    return whole;
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

struct Settings {
    QString size;
    int threads = 1;
    bool withPhrases = false;
    bool isVerbose = false;
};

void measure(const char *name, Route &route, const std::vector<LoadedClip> &clips,
             const Settings &settings) {
    const auto loadStart = SteadyClock::now();
    route.load();
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
    for (const LoadedClip &clip : clips) {
        const auto [heard, words] =
            route.hear(clip.samples, settings.withPhrases ? clip.phrases : QStringList());
        const WordErrors clipErrors = wordErrors(spokenWords(clip.transcript), spokenWords(heard));
        errors += clipErrors;
        if (clip.transcript.isEmpty()) {
            ++voicelessClips;
            inventedWords += clipErrors.insertions;
        }
        compareTimes(words, clip.aligned, starts, ends);
        audioSeconds += static_cast<double>(clip.samples.size()) / SpeechModel::sampleRate;
        if (settings.isVerbose && clipErrors.errors()) {
            std::printf("%s\n  said:  %s\n  heard: %s\n",
                        qPrintable(QFileInfo(clip.path).fileName()), qPrintable(clip.transcript),
                        qPrintable(heard));
        }
        phrases.add(clip, heard, settings.isVerbose);
    }
    const double seconds = secondsSince(start);
    const double processor = processorSeconds() - processorStart;
    std::printf("%-5s %-8s %d thread%s%s%5.2f%% of %d words wrong (%d changed, %d inserted, "
                "%d lost)",
                qPrintable(settings.size), name, settings.threads,
                settings.threads == 1 ? "   " : "s  ", settings.withPhrases ? "with phrases " : "",
                errors.rate() * 100, errors.wordCount, errors.substitutions, errors.insertions,
                errors.deletions);
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
                audioSeconds, seconds, processor, loadSeconds, peakMegabytes());
    std::fflush(stdout);
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"folder"_qs, u"recordings with a clips.tsv"_qs);
    parser.addOption({u"models"_qs, u"folder of the models"_qs, u"path"_qs,
                      QDir(QCoreApplication::applicationDirPath()).filePath(u"models"_qs)});
    parser.addOption({u"language"_qs, u"language of the recordings"_qs, u"code"_qs, u"en"_qs});
    parser.addOption({u"size"_qs, u"only this model"_qs, u"name"_qs});
    parser.addOption(
        {u"routes"_qs, u"which of whole,analyser,chunks"_qs, u"names"_qs, u"whole"_qs});
    parser.addOption(
        {u"threads"_qs, u"threads of the runtime, such as 1,2"_qs, u"counts"_qs, u"1"_qs});
    parser.addOption({u"joined"_qs, u"one recording of all of them"_qs});
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
    std::vector<LoadedClip> clips =
        load(readClips(QDir(parser.positionalArguments().first()), parser.value(u"list"_qs)));
    const double gain = std::pow(10, parser.value(u"gain"_qs).toDouble() / 20);
    const auto silence =
        static_cast<std::size_t>(parser.value(u"silence"_qs).toDouble() * SpeechModel::sampleRate);
    for (LoadedClip &clip : clips) {
        for (float &sample : clip.samples)
            sample *= static_cast<float>(gain);
        clip.samples.insert(clip.samples.begin(), silence, 0.F);
        clip.samples.insert(clip.samples.end(), silence, 0.F);
        if (silence)
            clip.aligned = {};
    }
    if (parser.isSet(u"joined"_qs))
        clips = {joined(clips)};

    const bool havePhrases = std::any_of(clips.begin(), clips.end(),
                                         [](const Clip &clip) { return !clip.phrases.isEmpty(); });
    const QString voiceActivity = models.filePath(u"vad/silero.onnx"_qs);
    const QStringList sizes = parser.isSet(u"size"_qs) ? QStringList{parser.value(u"size"_qs)}
                                                       : QStringList{liveModel, fileModel};
    for (const QString &size : sizes) {
        for (const QString &name : parser.value(u"routes"_qs).split(u',')) {
            for (const QString &threads : parser.value(u"threads"_qs).split(u',')) {
                Settings settings{size, threads.toInt(), false, parser.isSet(u"verbose"_qs)};
                resetPeak();
                const std::unique_ptr<Route> route =
                    makeRoute(name, *folder, voiceActivity, size, settings.threads);
                if (!parser.isSet(u"only-phrases"_qs))
                    measure(qPrintable(name), *route, clips, settings);
                settings.withPhrases = true;
                if (havePhrases)
                    measure(qPrintable(name), *route, clips, settings);
            }
        }
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
