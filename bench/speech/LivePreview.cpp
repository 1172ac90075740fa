// Plays minutes of speech to the live recogniser, in buffers as a microphone gives them and with a
// new request every half minute, as a dictation does. Prints how soon and how often the text comes,
// how much of it is taken back, and what it costs. Time is simulated: it passes as the audio does,
// or as the processor time that is used, as on a machine that has a core left. With --paced it is
// the time of the clock on the wall.

#include "LongRecording.h"
#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/DecodedAudio.h"
#include "Speech/LiveRecognition.h"
#include "Speech/OnDeviceSpeech.h"
#include "Speech/WordErrors.h"
#include "Usage.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace lorvane {
namespace {

constexpr int sampleRate = 48000;
constexpr std::size_t bufferSize = 2048;
constexpr double rotation = 30;

/// A text as it was shown, with times in seconds from the first buffer.
struct Shown {
    double time = 0;
    QStringList words;
    std::vector<double> starts; ///< of the words
};

using Request = std::vector<Shown>;

/// What a live recognition says, request by request.
class Listener {
public:
    using Time = std::function<double()>;
    explicit Listener(Time time) : time_(std::move(time)) {}

    SpeechHandler next() {
        const std::lock_guard lock(mutex_);
        requests_.emplace_back();
        return [this, index = requests_.size() - 1, begin = time_()](
                   const std::optional<SpeechResult> &result, const std::optional<QString> &) {
            const std::lock_guard guard(mutex_);
            if (!result)
                return;
            Shown shown{time_(), {}, {}};
            for (const SpeechSegment &segment : result->segments) {
                shown.words.append(segment.substring);
                shown.starts.push_back(begin + segment.timestamp);
            }
            requests_[index].push_back(std::move(shown));
        };
    }
    std::vector<Request> requests() {
        const std::lock_guard lock(mutex_);
        return requests_;
    }

private:
    const Time time_;
    std::mutex mutex_;
    std::vector<Request> requests_;
};

using Samples = std::span<const float>;

void append(SpeechBufferRequest &request, Samples samples) {
    request.append({samples.data(), static_cast<qsizetype>(samples.size()), 1});
}

/// Plays at the pace of the clock on the wall.
std::vector<Request> playPaced(Samples samples) {
    SndfileAudioFile audioFile;
    OnDeviceSpeech speech(audioFile, OnDeviceSpeech::installedModelsFolder());
    const auto recognizer = speech.makeRecognizer(u"en-US"_qs);
    if (!recognizer)
        throw std::runtime_error("there is no recogniser: run scripts/fetch-speech");
    std::this_thread::sleep_for(std::chrono::seconds(6)); // until the models are loaded
    const auto start = SteadyClock::now();
    Listener listener([start] { return secondsSince(start); });
    std::shared_ptr<SpeechBufferRequest> request;
    std::unique_ptr<SpeechTask> task;
    double rotateAt = 0;
    for (std::size_t i = 0; i + bufferSize <= samples.size(); i += bufferSize) {
        const double time = static_cast<double>(i + bufferSize) / sampleRate;
        std::this_thread::sleep_until(start + std::chrono::duration_cast<SteadyClock::duration>(
                                                  std::chrono::duration<double>(time)));
        if (time >= rotateAt) {
            rotateAt += rotation;
            request = recognizer->makeBufferRequest({sampleRate, 1}, SpeechOptions());
            task = recognizer->recognize(request, listener.next());
        }
        append(*request, samples.subspan(i, bufferSize));
    }
    task.reset();
    return listener.requests();
}

/// A worker on a clock that goes by the audio and by processor time.
class Simulation {
public:
    Simulation() {
        const QString models = OnDeviceSpeech::installedModelsFolder();
        engine_ = std::make_shared<KeptEngine>(
            std::make_unique<SpeechEngine>(runtime_, *ModelFolder::find(models, u"en"_qs),
                                           QDir(models).filePath(u"vad/silero.onnx"_qs)),
            liveModel, worker_);
        worker_.postInBackground({},
                                 [this](std::stop_source &) { engine_->use().load(liveModel); });
        catchUp();
        passTo(0);
    }

    std::vector<Request> play(Samples samples) {
        Listener listener([this] { return time(); });
        std::shared_ptr<LiveRequest> request;
        std::stop_source cancellation;
        double rotateAt = 0;
        const double origin = time();
        std::size_t appended = 0;
        while (appended + bufferSize <= samples.size()) {
            if (time() - origin >= rotateAt) {
                rotateAt += rotation;
                cancellation.request_stop();
                cancellation = std::stop_source();
                request = std::make_shared<LiveRequest>(AudioFormat{sampleRate, 1});
                std::make_shared<LiveRecognition>(request, engine_, worker_,
                                                  cancellation.get_token(), listener.next())
                    ->start();
            }
            // What the microphone has given by now.
            const double next = static_cast<double>(appended + bufferSize) / sampleRate + origin;
            if (next > time())
                passTo(next);
            append(*request, samples.subspan(appended, bufferSize));
            appended += bufferSize;
            if (next >= time() - static_cast<double>(bufferSize) / sampleRate)
                catchUp();
        }
        cancellation.request_stop();
        catchUp();
        return listener.requests();
    }

private:
    double time() const { return passed_ + processorSeconds(); }

    void passTo(double time) { passed_ = time - processorSeconds(); }
    /// Runs what is due.
    void catchUp() {
        std::promise<void> done;
        worker_.postInBackground({}, [](std::stop_source &) {}); // wakes it up
        worker_.postInBackground(worker_.now(), [&done](std::stop_source &) { done.set_value(); });
        done.get_future().wait();
    }

    std::atomic<double> passed_ = 0;
    OnnxRuntime runtime_{1};
    Turns turns_{1};
    RecognitionWorker worker_{turns_, Urgency::preview, [this] {
                                  return RecognitionWorker::TimePoint(
                                      std::chrono::duration_cast<SteadyClock::duration>(
                                          std::chrono::duration<double>(1e6 + time())));
                              }};
    std::shared_ptr<KeptEngine> engine_;
};

/// How many of the words are no longer there, in their order.
std::size_t takenBack(const QStringList &old, const QStringList &now) {
    std::vector<std::size_t> length(static_cast<std::size_t>(now.size()) + 1);
    for (const QString &word : old) {
        std::size_t diagonal = 0;
        for (std::size_t j = 1; j < length.size(); ++j) {
            const std::size_t above = length[j];
            length[j] = word == now[static_cast<qsizetype>(j) - 1]
                            ? diagonal + 1
                            : std::max(length[j], length[j - 1]);
            diagonal = above;
        }
    }
    return static_cast<std::size_t>(old.size()) - length.back();
}

QStringList spoken(const QStringList &words) { return spokenWords(words.join(u' ')); }

double quantile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

void print(const char *what, const std::vector<double> &values, double limit) {
    const auto within = std::count_if(values.begin(), values.end(),
                                      [limit](double value) { return value <= limit; });
    std::printf("%-42s median %.2f s, 90%% %.2f s, worst %.2f s; %.1f%% of %zu within %.1f s\n",
                what, quantile(values, 0.5), quantile(values, 0.9), quantile(values, 1),
                100.0 * static_cast<double>(within) /
                    static_cast<double>(std::max<std::size_t>(1, values.size())),
                values.size(), limit);
}

/// For how long of the time from `start` to `end` somebody speaks.
double voiceBetween(const std::vector<VoiceSpan> &voice, double start, double end) {
    double sum = 0;
    for (const VoiceSpan &span : voice)
        sum += std::max(0.0, std::min(span.end, end) - std::max(span.start, start));
    return sum;
}

/// From the first loud moment of a part to its last. The recogniser's own times are no measure of
/// when a word began: while it has heard only some of it they may be some tenths of a second off.
VoiceSpan loudSpan(Samples samples, const Part &part) {
    constexpr float soft = 1.0F / 30; // of the loudest moment
    const auto at = [&](double time) {
        return samples.begin() + static_cast<std::ptrdiff_t>(time * sampleRate);
    };
    const auto isLouder = [](float a, float b) { return std::abs(a) < std::abs(b); };
    const Samples own(at(part.start),
                      at(std::min(part.end, static_cast<double>(samples.size()) / sampleRate)));
    const float limit = soft * std::abs(*std::max_element(own.begin(), own.end(), isLouder));
    const auto isLoud = [limit](float sample) { return std::abs(sample) > limit; };
    const auto first = std::find_if(own.begin(), own.end(), isLoud);
    const auto last = std::find_if(own.rbegin(), own.rend(), isLoud).base();
    return {part.start + static_cast<double>(first - own.begin()) / sampleRate,
            part.start + static_cast<double>(last - own.begin()) / sampleRate};
}

void report(const std::vector<Request> &requests, const std::vector<Part> &parts, Samples samples,
            const std::vector<VoiceSpan> &voice) {
    std::vector<double> firstWords; // from when the voice of a part began to when a word shows
    std::vector<double> gaps;       // for how long somebody spoke between two texts
    double endBefore = -1;
    for (const Part &part : parts) {
        const VoiceSpan loud = loudSpan(samples, part);
        const double pause = (endBefore + loud.start) / 2;
        endBefore = loud.end;
        double last = -1;
        for (const Request &request : requests) {
            for (const Shown &shown : request) {
                const auto first = std::find_if(shown.starts.begin(), shown.starts.end(),
                                                [&](double start) { return start > pause; });
                if (first == shown.starts.end() || *first > loud.end || shown.time < loud.start)
                    continue;
                if (last < 0)
                    firstWords.push_back(shown.time - loud.start);
                else if (last < loud.end)
                    gaps.push_back(voiceBetween(voice, last, std::min(shown.time, loud.end)));
                last = shown.time;
            }
        }
    }
    std::size_t shownCount = 0;
    std::size_t changed = 0;
    std::size_t spokenCount = 0;
    std::size_t spokenChanged = 0;
    std::size_t updates = 0;
    for (const Request &request : requests) {
        updates += request.size();
        for (std::size_t i = 1; i < request.size(); ++i) {
            if (request[i].words == request[i - 1].words)
                continue;
            shownCount += static_cast<std::size_t>(request[i - 1].words.size());
            changed += takenBack(request[i - 1].words, request[i].words);
            const QStringList old = spoken(request[i - 1].words);
            spokenCount += static_cast<std::size_t>(old.size());
            spokenChanged += takenBack(old, spoken(request[i].words));
        }
    }
    QStringList said;
    for (const Part &part : parts)
        said += spokenWords(part.clip->transcript);
    QStringList heard;
    for (const Request &request : requests)
        heard += request.empty() ? QStringList() : spoken(request.back().words);
    const auto percent = [](std::size_t part, std::size_t whole) {
        return 100.0 * static_cast<double>(part) /
               static_cast<double>(std::max<std::size_t>(1, whole));
    };
    std::printf("%-42s %zu\n", "texts", updates);
    print("first word after a pause, since the voice", firstWords, 1.2);
    print("spoken between two texts", gaps, 1);
    std::printf("%-42s %.2f%%, %.2f%% without marks and capitals\n",
                "of the words shown, changed by the next text", percent(changed, shownCount),
                percent(spokenChanged, spokenCount));
    std::printf("%-42s %.2f%%\n", "of the words said, wrong in the last texts",
                100 * wordErrors(said, heard).rate());
}

std::vector<VoiceSpan> voiceIn(const QString &path) {
    OnnxRuntime runtime(1);
    VoiceActivityModel model(
        runtime, QDir(OnDeviceSpeech::installedModelsFolder()).filePath(u"vad/silero.onnx"_qs));
    VoiceActivity activity(model);
    activity.listen(decodedAudio(path), {});
    return voiceSpans(activity.probabilities());
}

int runBenchmark(QCoreApplication &application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"folders"_qs, u"recordings with a clips.tsv"_qs);
    parser.addOption({u"minutes"_qs, u"how long to play"_qs, u"count"_qs, u"4"_qs});
    parser.addOption({u"paced"_qs, u"play at the pace of speech"_qs});
    parser.addOption({u"verbose"_qs, u"print each text"_qs});
    parser.process(application);
    if (parser.positionalArguments().isEmpty())
        parser.showHelp(1);

    SndfileAudioFile audioFile;
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording.caf"_qs);
    const std::vector<Clip> clips = readSpeech(parser.positionalArguments());
    std::mt19937 random(1);
    const std::vector<Part> parts =
        writeRecording(audioFile, path, clips, 60 * parser.value(u"minutes"_qs).toDouble(), random);
    const std::vector<float> samples = decodedAudio(path, sampleRate);

    const double processorStart = processorSeconds();
    const std::vector<Request> requests =
        parser.isSet(u"paced"_qs) ? playPaced(samples) : Simulation().play(samples);
    const double processor = processorSeconds() - processorStart;
    const double seconds = static_cast<double>(samples.size()) / sampleRate;
    if (parser.isSet(u"verbose"_qs)) {
        for (const Request &shown : requests) {
            for (const Shown &text : shown)
                std::printf("%7.2f s  %s\n", text.time, qPrintable(text.words.join(u' ')));
        }
    }
    report(requests, parts, samples, voiceIn(path));
    std::printf("%-42s %.0f%% of a core\n", "processor", 100 * processor / seconds);
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
