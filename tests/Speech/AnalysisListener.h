#pragma once

#include "Platform/Speech.h"
#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <unistd.h>

namespace lorvane {

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
        SpeechAnalyzer &analyzer, const QString &path,
        const std::function<void()> &onResult = [] {}) {
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

/// Prompts with pauses of a second and a half, and what they say.
inline std::pair<std::vector<float>, QString> speech(double seconds) {
    std::vector<float> samples;
    QStringList said;
    for (std::size_t i = 0; static_cast<double>(samples.size()) < seconds * sampleRate; i += 3) {
        const std::vector<float> prompt = decodedAudio(prompts()[i].path);
        samples.insert(samples.end(), prompt.begin(), prompt.end());
        samples.resize(samples.size() + sampleRate * 3 / 2);
        said.append(prompts()[i].transcript);
    }
    return {samples, said.join(u' ')};
}

/// The memory of this process.
inline qint64 residentBytes() {
    std::ifstream statm("/proc/self/statm");
    qint64 total = 0;
    qint64 resident = 0;
    statm >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

} // namespace lorvane
