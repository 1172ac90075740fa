// Plays a recording to the live recogniser at the pace of speech, in buffers as a microphone gives
// them, and prints what is shown when, and what it costs.

#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/DecodedAudio.h"
#include "Speech/LiveRequest.h"
#include "Speech/OnDeviceSpeech.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <thread>

namespace lorvane {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int sampleRate = 48000;
constexpr std::size_t bufferSize = 2048;

struct Shown {
    double time = 0; ///< in seconds from the first buffer
    QStringList words;
    double lastWord = 0; ///< when it was spoken
};

void play(SpeechBufferRequest &request, std::span<const float> samples) {
    auto due = SteadyClock::now();
    for (std::size_t i = 0; i + bufferSize <= samples.size(); i += bufferSize) {
        due += std::chrono::microseconds(1'000'000LL * bufferSize / sampleRate);
        std::this_thread::sleep_until(due);
        request.append({samples.data() + i, static_cast<qsizetype>(bufferSize), 1});
    }
}

void report(const std::vector<Shown> &shown, double seconds, double processorSeconds) {
    std::size_t wordCount = 0;
    std::size_t changed = 0;
    double longest = 0;
    double latest = 0;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        std::printf("%6.2f s  %s\n", shown[i].time, qPrintable(shown[i].words.join(u' ')));
        longest = std::max(longest, shown[i].time - (i ? shown[i - 1].time : shown[0].lastWord));
        latest = std::max(latest, shown[i].time - shown[i].lastWord);
        if (i == 0)
            continue;
        const QStringList &old = shown[i - 1].words;
        for (qsizetype word = 0; word < old.size(); ++word) {
            ++wordCount;
            changed += shown[i].words.value(word) != old[word] ? 1U : 0U;
        }
    }
    const auto share = [](std::size_t part, std::size_t whole) {
        return whole ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0;
    };
    std::printf("updates                       %6zu, %.2f s between two at most\n", shown.size(),
                longest);
    if (!shown.empty())
        std::printf("the first words show          %6.2f s after the last of them began\n",
                    shown.front().time - shown.front().lastWord);
    std::printf("a last word shows             %6.2f s after it began, at most\n", latest);
    std::printf("words changed when shown next %6.1f %%\n", share(changed, wordCount));
    std::printf("processor                     %6.0f %% of a core\n",
                100 * processorSeconds / seconds);
}

QStringList linesOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("the phrases can't be read");
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"recording"_qs,
                                 u"an audio file; its first 34 seconds are played"_qs);
    const QCommandLineOption phrases(u"phrases"_qs, u"listens for the lines of <file>"_qs,
                                     u"file"_qs);
    parser.addOption(phrases);
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    std::vector<float> samples = decodedAudio(parser.positionalArguments().first(), sampleRate);
    samples.resize(std::min(samples.size(),
                            static_cast<std::size_t>(sampleRate * (LiveRequest::longest - 1))));

    SpeechOptions options;
    if (parser.isSet(phrases))
        options.contextualStrings = linesOf(parser.value(phrases));

    SndfileAudioFile audioFile;
    OnDeviceSpeech speech(audioFile, OnDeviceSpeech::installedModelsFolder());
    const auto recognizer = speech.makeRecognizer(u"en-US"_qs);
    if (!recognizer)
        throw std::runtime_error("there is no recogniser: run scripts/fetch-speech");
    speech.preload();
    std::this_thread::sleep_for(std::chrono::seconds(6));

    std::mutex mutex;
    std::vector<Shown> shown;
    const auto start = SteadyClock::now();
    const auto elapsed = [start] {
        return std::chrono::duration<double>(SteadyClock::now() - start).count();
    };
    const std::clock_t processorStart = std::clock();
    const auto request = recognizer->makeBufferRequest({sampleRate, 1}, options);
    const auto task = recognizer->recognize(
        request, [&](const std::optional<SpeechResult> &result, const std::optional<QString> &) {
            const std::lock_guard lock(mutex);
            if (result && !result->segments.isEmpty()) {
                shown.push_back({elapsed(), result->formattedString.split(u' '),
                                 result->segments.last().timestamp});
            }
        });
    play(*request, samples);
    task->cancel();
    const double seconds = elapsed();
    const double processorSeconds =
        static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC;
    const std::lock_guard lock(mutex);
    report(shown, seconds, processorSeconds);
    return 0;
}

} // namespace
} // namespace lorvane

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    try {
        return lorvane::runBenchmark(application);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "live-preview: %s\n", error.what());
        return 1;
    }
}
