#include "Services/FileSpeechRecognition.h"

#include "Fakes/FakeClock.h"
#include "Fakes/FakeSpeech.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

class FileSpeechRecognitionTest : public testing::Test {
protected:
    using Result = FileSpeechRecognition::Result;

    FakeClock clock;
    FakeSpeech speech;
    std::shared_ptr<SpeechRecognizer> recognizer = speech.makeRecognizer(u"en-AU"_s);
    std::shared_ptr<FileSpeechRecognition> recognition = FileSpeechRecognition::make(clock);
    std::optional<Result> result;
    int resumptions = 0;
    Task<> caller;

    Async<> call() {
        const QStringList hints{u"kubectl"_s};
        const SpeechContext context;
        result = co_await recognition->recognize(u"chunk-0.caf"_s, recognizer, hints, context);
        ++resumptions;
    }

    FakeSpeech::RequestPointer begin() {
        caller = Task<>::run(call());
        clock.runUntilIdle();
        return speech.fileRequests().back();
    }

    QStringList words() const {
        QStringList texts;
        for (const TranscribedWord &word : result->words)
            texts.append(word.text);
        return texts;
    }
};

TEST_F(FileSpeechRecognitionTest, AsksForTheFileWithTheHintsAndWithoutPartialResults) {
    const auto request = begin();
    EXPECT_EQ(request->path, u"chunk-0.caf"_s);
    EXPECT_EQ(request->options.contextualStrings, QStringList{u"kubectl"_s});
    EXPECT_FALSE(request->options.reportPartialResults);
    EXPECT_TRUE(request->options.requiresOnDeviceRecognition);
}

TEST_F(FileSpeechRecognitionTest, FinalResultEndsItWithoutError) {
    const auto request = begin();
    request->give(FakeSpeech::result(u"Hello world."_s, true));
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_EQ(words(), QStringList({u"Hello"_s, u"world."_s}));
    EXPECT_FALSE(result->error);
    EXPECT_TRUE(request->isCancelled);
    clock.advance(0s);
    EXPECT_EQ(clock.timerCount(), 0) << "the deadline still runs";
}

TEST_F(FileSpeechRecognitionTest, ResultThatIsNotFinalDoesNotEndIt) {
    begin()->give(FakeSpeech::result(u"Hello"_s, false));
    clock.runUntilIdle();
    EXPECT_FALSE(result);
}

TEST_F(FileSpeechRecognitionTest, ErrorEndsItWithTheWordsSoFar) {
    const auto request = begin();
    request->give(FakeSpeech::result(u"Hello"_s, false));
    request->fail(u"The recogniser broke."_s);
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_EQ(words(), QStringList{u"Hello"_s});
    EXPECT_EQ(result->error, u"The recogniser broke."_s);
}

TEST_F(FileSpeechRecognitionTest, ErrorThatCarriesAResultAppliesTheWordsFirst) {
    begin()->giveAndFail(FakeSpeech::result(u"Hello there"_s, false), u"Broke."_s);
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_EQ(words(), QStringList({u"Hello"_s, u"there"_s}));
    EXPECT_EQ(result->error, u"Broke."_s);
}

TEST_F(FileSpeechRecognitionTest, FinalResultWinsOverTheErrorOfTheSameCallback) {
    begin()->giveAndFail(FakeSpeech::result(u"Hello"_s, true), u"Broke."_s);
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->error);
}

TEST_F(FileSpeechRecognitionTest, DeadlineEndsItAfterTwoMinutes) {
    const auto request = begin();
    request->give(FakeSpeech::result(u"Hello"_s, false));
    clock.advance(120s - 1ns);
    EXPECT_FALSE(result);
    clock.advance(1ns);
    ASSERT_TRUE(result);
    EXPECT_EQ(words(), QStringList{u"Hello"_s});
    EXPECT_EQ(result->error, u"Recognition timed out before a complete result was available."_s);
    EXPECT_TRUE(request->isCancelled);
}

TEST_F(FileSpeechRecognitionTest, CancelledCallerGetsTheWordsSoFar) {
    const auto request = begin();
    request->give(FakeSpeech::result(u"Hello"_s, false));
    clock.runUntilIdle();
    caller.cancel();
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_EQ(words(), QStringList{u"Hello"_s});
    EXPECT_EQ(result->error, u"Transcription cancelled."_s);
}

TEST_F(FileSpeechRecognitionTest, CallerCancelledBeforehandAsksNothing) {
    caller = Task<>::post(clock, call());
    caller.cancel();
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->words.isEmpty());
    EXPECT_EQ(result->error, u"Transcription cancelled."_s);
    EXPECT_TRUE(speech.requests.empty());
}

// Each pair of enders in the same turn: the first counts, and the caller is resumed once.
TEST_F(FileSpeechRecognitionTest, OnlyTheFirstOfSeveralEndersCounts) {
    const QList<std::pair<QString, std::function<void(const FakeSpeech::RequestPointer &)>>> enders{
        {QString(), [](const auto &request) { request->give(FakeSpeech::result(u"a"_s, true)); }},
        {u"Broke."_s, [](const auto &request) { request->fail(u"Broke."_s); }},
        {u"Transcription cancelled."_s,
         [this](const auto &) { clock.post([this] { recognition->cancel(); }); }},
    };
    for (const auto &[firstError, first] : enders) {
        for (const auto &[secondError, second] : enders) {
            result.reset();
            resumptions = 0;
            const auto request = begin();
            first(request);
            second(request);
            clock.runUntilIdle();
            clock.advance(200s);
            ASSERT_TRUE(result);
            EXPECT_EQ(result->error.value_or(QString()), firstError);
            EXPECT_EQ(resumptions, 1);
        }
    }
}

TEST_F(FileSpeechRecognitionTest, CallbackAfterTheEndDoesNothing) {
    const auto request = begin();
    recognition->cancel();
    clock.runUntilIdle();
    request->give(FakeSpeech::result(u"late"_s, true));
    clock.runUntilIdle();
    EXPECT_TRUE(result->words.isEmpty());
    EXPECT_EQ(resumptions, 1);
}

TEST_F(FileSpeechRecognitionTest, CallbackAfterTheObjectHasGoneDoesNothing) {
    const auto request = begin();
    recognition->cancel();
    clock.runUntilIdle();
    recognition.reset();
    request->give(FakeSpeech::result(u"late"_s, true));
    clock.runUntilIdle();
    EXPECT_EQ(resumptions, 1);
}

TEST_F(FileSpeechRecognitionTest, FinalResultWithoutSegmentsIsAnEmptySuccess) {
    begin()->give(SpeechResult{u""_s, {}, true});
    clock.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->words.isEmpty());
    EXPECT_FALSE(result->error);
}

TEST(FileSpeechRecognitionWords, PunctuationStaysWithTheWordBeforeIt) {
    const SpeechResult result{u"Well , then \n go !"_s,
                              {{0, u"Well"_s, 0, 1}, {7, u"then"_s, 1, 1}, {14, u"go"_s, 2, 1}},
                              true};
    const auto words = FileSpeechRecognition::words(result);
    ASSERT_EQ(words.size(), 3);
    EXPECT_EQ(words[0].text, u"Well ,"_s);
    EXPECT_EQ(words[1].text, u"then"_s);
    EXPECT_EQ(words[2].text, u"go !"_s);
    EXPECT_EQ(words[2].start, 2);
}

TEST(FileSpeechRecognitionWords, RangesThatDoNotFitFallBackToTheSubstring) {
    const SpeechResult result{u"one two"_s,
                              {{4, u"uno"_s, 0, 1},    // the next one starts before it
                               {-1, u"minus"_s, 1, 1}, // before the string
                               {40, u"far"_s, 2, 1}},  // behind the string
                              true};
    const auto words = FileSpeechRecognition::words(result);
    EXPECT_EQ(words[0].text, u"uno"_s);
    EXPECT_EQ(words[1].text, u"minus"_s);
    EXPECT_EQ(words[2].text, u"far"_s);
}

} // namespace
} // namespace lorvane
