#pragma once

#include "Platform/Linux/SndfileAudioFile.h"
#include "Speech/OnDeviceSpeech.h"

#include <QTemporaryDir>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace lorvane {

/// Collects what a recogniser says, and waits for it.
class SpeechListener {
public:
    struct Heard {
        std::vector<SpeechResult> results;
        std::optional<QString> error;
        bool handlerIsGone = false; ///< nothing can come any more

        bool isFinal() const { return !results.empty() && results.back().isFinal; }
        QString text() const {
            return results.empty() ? QString() : results.back().formattedString;
        }
    };

    SpeechHandler handler();

    /// Waits until `condition` holds of what has been heard; false when it never does within
    /// a minute.
    template <class Condition>
    bool waitFor(Condition condition) {
        std::unique_lock lock(state_->mutex);
        return state_->changed.wait_for(lock, std::chrono::minutes(1),
                                        [&] { return condition(state_->heard); });
    }
    bool waitForEnd() {
        return waitFor([](const Heard &heard) { return heard.isFinal() || heard.error; });
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

/// The recogniser on the real models, loaded once for all tests of a program.
OnDeviceSpeech &realSpeech();
SpeechRecognizer &englishRecognizer();

/// Writes mono samples to a new file and gives its path. The file goes with the program.
QString writeAudio(const std::vector<float> &samples, double sampleRate = 16000,
                   int channelCount = 1);

/// What the recogniser hears in a file of these samples.
SpeechListener::Heard recognizeSamples(const std::vector<float> &samples, double sampleRate = 16000,
                                       int channelCount = 1);

} // namespace lorvane
