#include "Services/LongFormFileRecognition.h"

#include "Core/LocalizedError.h"
#include "Fakes/FakeClock.h"
#include "Fakes/FakeSpeech.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

constexpr double shortRecording = 5;

class LongFormFileRecognitionTest : public testing::Test {
protected:
    LongFormFileRecognitionTest() { speech.hasAnalyzer = true; }

    FakeClock clock;
    FakeSpeech speech;
    Task<> caller;
    std::optional<QString> text;
    QString error;
    QStringList updates;
    int resumptions = 0;

    Async<> call(double duration) {
        const QStringList hints{u"kubectl"_s};
        const LongFormFileRecognition::OnUpdate onUpdate = [this](const QString &soFar) {
            updates.append(soFar);
        };
        try {
            text = co_await LongFormFileRecognition::recognizeIfInstalled(
                clock, speech, u"recording.caf"_s, u"en-AU"_s, hints, duration, onUpdate);
        } catch (const LocalizedError &thrown) {
            error = thrown.localizedDescription();
        }
        ++resumptions;
    }

    FakeSpeech::AnalysisPointer begin(double duration = shortRecording) {
        text.reset();
        error.clear();
        updates.clear();
        resumptions = 0;
        caller = Task<>::run(call(duration));
        clock.runUntilIdle();
        return speech.analyses.empty() ? nullptr : speech.analyses.back();
    }
};

const QString timedOut = u"Recognition timed out before a complete result was available."_s;
const QString cancelled = u"Dictation was cancelled."_s;

TEST_F(LongFormFileRecognitionTest, WithoutAnInstalledModelThereIsNoText) {
    speech.hasAnalyzer = false;
    begin();
    EXPECT_EQ(resumptions, 1);
    EXPECT_FALSE(text);
    EXPECT_EQ(error, QString());
    EXPECT_EQ(clock.timerCount(), 0);
}

TEST_F(LongFormFileRecognitionTest, AnalyserGetsTheWholeFileTheLocaleAndTheHints) {
    const auto analysis = begin();
    EXPECT_EQ(analysis->path, u"recording.caf"_s);
    EXPECT_EQ(analysis->localeIdentifier, u"en-AU"_s);
    EXPECT_EQ(analysis->contextualStrings, QStringList{u"kubectl"_s});
}

TEST_F(LongFormFileRecognitionTest, EachFinalSegmentGrowsTheText) {
    const auto analysis = begin();
    analysis->give(u" Hello there\n"_s, 0, 2);
    clock.runUntilIdle();
    EXPECT_EQ(updates, QStringList{u"Hello there"_s});
    analysis->give(u", world."_s, 2, 1);
    analysis->end();
    clock.runUntilIdle();
    EXPECT_EQ(updates, QStringList({u"Hello there"_s, u"Hello there, world."_s}));
    EXPECT_EQ(text, u"Hello there, world."_s);
    EXPECT_TRUE(analysis->isCancelled);
    EXPECT_EQ(clock.timerCount(), 0) << "the watchdog still runs";
}

TEST_F(LongFormFileRecognitionTest, WhatIsNotFinalOrBlankIsNeverShown) {
    const auto analysis = begin();
    analysis->give(u"perhaps"_s, 0, 2, false);
    analysis->give(u" \n\u00a0"_s, 0, 2);
    analysis->end();
    clock.runUntilIdle();
    EXPECT_TRUE(updates.isEmpty());
    EXPECT_EQ(text, u""_s);
}

TEST_F(LongFormFileRecognitionTest, SegmentThatCameAgainReplacesItsOlderSelfAndWhatFollowed) {
    const auto analysis = begin();
    analysis->give(u"one"_s, 0, 2);
    analysis->give(u"two"_s, 2, 2);
    analysis->give(u"three"_s, 4, 2);
    analysis->give(u"2"_s, 1.99, 2);
    analysis->end();
    clock.runUntilIdle();
    EXPECT_EQ(text, u"one 2"_s);
}

TEST_F(LongFormFileRecognitionTest, AnalyserThatFailsIsAnErrorAndAbandoned) {
    const auto analysis = begin();
    analysis->give(u"one"_s, 0, 2);
    analysis->fail(u"The file could not be read."_s);
    clock.runUntilIdle();
    EXPECT_FALSE(text);
    EXPECT_EQ(error, u"The file could not be read."_s);
    EXPECT_TRUE(analysis->isCancelled);
    EXPECT_EQ(clock.timerCount(), 0);
}

TEST_F(LongFormFileRecognitionTest, CallerCancelledBeforehandStartsNothing) {
    caller = Task<>::post(clock, call(shortRecording));
    caller.cancel();
    clock.runUntilIdle();
    EXPECT_EQ(error, cancelled);
    EXPECT_EQ(speech.analyses.front()->path, QString());
}

TEST_F(LongFormFileRecognitionTest, CancelledCallerAbandonsTheAnalyserAtOnce) {
    const auto analysis = begin();
    analysis->give(u"one"_s, 0, 2);
    clock.runUntilIdle();
    caller.cancel();
    EXPECT_TRUE(analysis->isCancelled);
    analysis->give(u"late"_s, 2, 2);
    clock.runUntilIdle();
    EXPECT_FALSE(text);
    EXPECT_EQ(error, cancelled);
    EXPECT_EQ(updates, QStringList{u"one"_s});
    EXPECT_EQ(clock.timerCount(), 0);
}

TEST_F(LongFormFileRecognitionTest, CancellationWinsOverAnEndThatNobodyHasHeardOfYet) {
    const auto analysis = begin();
    analysis->end();
    caller.cancel();
    clock.runUntilIdle();
    EXPECT_FALSE(text);
    EXPECT_EQ(error, cancelled);
    EXPECT_EQ(resumptions, 1);
}

// The larger of two minutes and three times the recording, cut to whole seconds.
TEST_F(LongFormFileRecognitionTest, WatchdogFiresAfterItsCutSeconds) {
    const std::vector<std::pair<double, std::chrono::seconds>> limits{
        {0, 120s}, {5, 120s}, {40, 120s}, {40.1, 120s}, {41, 123s}, {41.3, 123s}, {3600, 10800s}};
    for (const auto &[duration, limit] : limits) {
        const auto analysis = begin(duration);
        clock.advance(limit - 1ns);
        EXPECT_EQ(resumptions, 0) << duration;
        EXPECT_FALSE(analysis->isCancelled);
        clock.advance(1ns);
        EXPECT_EQ(resumptions, 1) << duration;
        EXPECT_TRUE(analysis->isCancelled);
        EXPECT_EQ(error, timedOut);
    }
}

// An abandoned analyser ends its results like one that has heard everything.
TEST_F(LongFormFileRecognitionTest, TextThatTheWatchdogCutIsNeverTakenAsWhole) {
    for (const bool isDeaf : {false, true}) {
        const auto analysis = begin();
        analysis->isDeaf = isDeaf;
        analysis->give(u"half of it"_s, 0, 2);
        clock.advance(120s);
        analysis->give(u"late"_s, 2, 2);
        analysis->end();
        clock.runUntilIdle();
        EXPECT_FALSE(text);
        EXPECT_EQ(error, timedOut);
        EXPECT_EQ(resumptions, 1);
        EXPECT_EQ(updates, QStringList{u"half of it"_s});
    }
}

// Each pair of enders in the same turn: the first counts, and the caller is resumed once.
TEST_F(LongFormFileRecognitionTest, OnlyTheFirstOfSeveralEndersCounts) {
    using Ender = std::function<void(const FakeSpeech::AnalysisPointer &)>;
    const std::vector<std::pair<QString, Ender>> enders{
        {QString(), [](const auto &analysis) { analysis->end(); }},
        {u"Broke."_s, [](const auto &analysis) { analysis->fail(u"Broke."_s); }},
        {timedOut, [this](const auto &) { clock.advance(120s); }},
    };
    for (const auto &[firstError, first] : enders) {
        for (const auto &[secondError, second] : enders) {
            const auto analysis = begin();
            first(analysis);
            second(analysis);
            clock.runUntilIdle();
            clock.advance(200s);
            EXPECT_EQ(error, firstError);
            EXPECT_EQ(text.has_value(), firstError.isEmpty());
            EXPECT_EQ(resumptions, 1);
            EXPECT_EQ(clock.timerCount(), 0);
        }
    }
}

TEST_F(LongFormFileRecognitionTest, CancellationAfterTheEndHasNoEffect) {
    const auto analysis = begin();
    analysis->give(u"Hello."_s, 0, 2);
    analysis->end();
    clock.runUntilIdle();
    caller.cancel();
    clock.advance(200s);
    EXPECT_EQ(text, u"Hello."_s);
    EXPECT_EQ(error, QString());
    EXPECT_EQ(resumptions, 1);
}

TEST_F(LongFormFileRecognitionTest, ResultsAfterTheEndChangeNothing) {
    const auto analysis = begin();
    analysis->end();
    analysis->give(u"late"_s, 0, 2);
    clock.runUntilIdle();
    analysis->give(u"later"_s, 0, 2);
    clock.runUntilIdle();
    EXPECT_TRUE(updates.isEmpty());
    EXPECT_EQ(text, u""_s);
}

} // namespace
} // namespace lorvane
