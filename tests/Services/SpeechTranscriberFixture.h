#pragma once

#include "Services/SpeechTranscriber.h"

#include "Fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace lorvane {

/// A transcriber on a whole platform of fakes.
class SpeechTranscriberFixture : public testing::Test {
protected:
    FakePorts ports;
    SpeechTranscriber transcriber{ports};
    Task<> starting;
    QStringList hints;
    bool started = false;
    std::optional<TranscriptionError::Kind> startError;
    QString startErrorText;
    std::optional<QString> text;

    Async<> runStart(QString language) {
        startError.reset();
        started = false;
        try {
            co_await transcriber.start(language, hints);
            started = true;
        } catch (const TranscriptionError &error) {
            startError = error.kind;
            startErrorText = error.localizedDescription();
        } catch (const LocalizedError &error) {
            startErrorText = error.localizedDescription();
        }
    }

    Async<> runStop() { text = co_await transcriber.stop(); }

    void start(const QString &language = QStringLiteral("en-AU")) {
        starting = Task<>::run(runStart(language));
        clock().runUntilIdle();
    }

    void speak(std::chrono::milliseconds time, float level = 0.1F) {
        for (auto left = time.count() * 48; left > 0; left -= 2048)
            ports.audioInput.deliver(std::min<qsizetype>(left, 2048), level);
        clock().runUntilIdle();
    }

    void stop() {
        text.reset();
        Task<>::run(runStop());
        clock().runUntilIdle();
    }

    void answerChunk(const QString &words, double start = 0, double secondsPerWord = 0.5) {
        ports.speech.fileRequests().back()->give(
            FakeSpeech::result(words, true, start, secondsPerWord));
        clock().runUntilIdle();
    }

    FakeSpeech::RequestPointer live() const { return ports.speech.liveRequests().back(); }
    QString recordingFolder() const { return ports.recordingFolders().value(0); }
    FakeClock &clock() { return ports.clock; }
};

} // namespace lorvane
