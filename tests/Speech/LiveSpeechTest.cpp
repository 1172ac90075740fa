#include "Speech/DecodedAudio.h"
#include "Speech/LiveRecognition.h"
#include "Speech/Prompts.h"
#include "Speech/RealEngine.h"
#include "Speech/Sounds.h"
#include "Speech/SpeechListener.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lorvane {
namespace {

constexpr int captureRate = 48000;
constexpr std::size_t tenSeconds = std::size_t{10} * captureRate;

/// Feeds a request as the audio thread does, in buffers of 2048 frames.
void feed(SpeechBufferRequest &request, std::span<const float> samples) {
    constexpr std::size_t step = 2048;
    while (!samples.empty()) {
        const std::size_t count = std::min(step, samples.size());
        request.append({samples.data(), static_cast<qsizetype>(count), 1});
        samples = samples.subspan(count);
    }
}

class LiveSpeechTest : public testing::Test {
protected:
    void SetUp() override {
        request_ = englishRecognizer().makeBufferRequest({captureRate, 1}, SpeechOptions());
        task_ = englishRecognizer().recognize(request_, listener_.handler());
    }

    bool waitForText(const QString &text) {
        return listener_.waitFor(
            [&](const SpeechListener::Heard &heard) { return heard.text().contains(text); });
    }

    // "You cannot reply to this message because the sender does not have a mailbox."
    const std::vector<float> voice_ = decodedAudio(promptPath(u"vm-nobox"_qs), captureRate);
    SpeechListener listener_;
    std::shared_ptr<SpeechBufferRequest> request_;
    std::unique_ptr<SpeechTask> task_;
};

TEST_F(LiveSpeechTest, ReportsTheTextSoFarWhileTheVoiceGoesOn) {
    const std::span<const float> voice(voice_);
    feed(*request_, voice.first(voice.size() / 2));
    ASSERT_TRUE(waitForText(u"cannot reply"_qs));
    EXPECT_FALSE(listener_.heard().text().contains(u"mailbox"_qs));
    feed(*request_, voice.subspan(voice.size() / 2));
    feed(*request_, std::vector<float>(captureRate));
    ASSERT_TRUE(waitForText(u"mailbox"_qs));
    const SpeechListener::Heard heard = listener_.heard();
    EXPECT_GE(heard.results.size(), 2U);
    for (const SpeechResult &result : heard.results) {
        EXPECT_FALSE(result.isFinal);
        ASSERT_FALSE(result.segments.isEmpty());
        EXPECT_TRUE(
            std::is_sorted(result.segments.begin(), result.segments.end(),
                           [](const auto &a, const auto &b) { return a.timestamp < b.timestamp; }));
    }
    EXPECT_FALSE(heard.error);
}

TEST_F(LiveSpeechTest, SaysNothingWhileNobodySpeaks) {
    feed(*request_, std::vector<float>(tenSeconds));
    feed(*request_, voice_);
    ASSERT_TRUE(waitForText(u"message"_qs));
    for (const SpeechResult &result : listener_.heard().results)
        EXPECT_GT(result.segments.first().timestamp, 9.5) << qPrintable(result.formattedString);
}

TEST_F(LiveSpeechTest, InventsNoWordsOnBreathTypingHumAndMusic) {
    for (const Sound &sound : soundsWithoutVoice(captureRate)) {
        SpeechListener listener;
        const auto request =
            englishRecognizer().makeBufferRequest({captureRate, 1}, SpeechOptions());
        const auto task = englishRecognizer().recognize(request, listener.handler());
        feed(*request, sound.samples);
        feed(*request, std::vector<float>(captureRate));
        feed(*request, voice_);
        ASSERT_TRUE(listener.waitFor([](const auto &heard) {
            return heard.text().contains(u"message"_qs);
        })) << sound.name;
        const double duration = static_cast<double>(sound.samples.size()) / captureRate;
        for (const SpeechResult &result : listener.heard().results)
            EXPECT_GT(result.segments.first().timestamp, duration + 0.5)
                << sound.name << ": " << qPrintable(result.formattedString);
    }
}

TEST_F(LiveSpeechTest, EndsByItselfWithAFinalResultWhenItHasRunForTooLong) {
    feed(*request_, voice_);
    for (int second = 0; second < static_cast<int>(LiveRequest::longest) + 1; ++second)
        feed(*request_, std::vector<float>(captureRate));
    ASSERT_TRUE(listener_.waitForEnd());
    EXPECT_TRUE(listener_.heard().isFinal());
    EXPECT_TRUE(listener_.heard().text().contains(u"mailbox"_qs));
    EXPECT_TRUE(listener_.waitFor([](const auto &heard) { return heard.handlerIsGone; }));
}

TEST_F(LiveSpeechTest, IsOverSoonAfterItsCancellation) {
    feed(*request_, voice_);
    ASSERT_TRUE(listener_.waitFor([](const auto &heard) { return !heard.results.empty(); }));
    task_->cancel();
    ASSERT_TRUE(listener_.waitFor([](const auto &heard) { return heard.handlerIsGone; }));
    feed(*request_, voice_); // dropped
    EXPECT_FALSE(listener_.heard().isFinal());
}

TEST_F(LiveSpeechTest, MakesWayForAFileAndGoesOnAfterIt) {
    feed(*request_, voice_);
    ASSERT_TRUE(waitForText(u"reply"_qs));
    feed(*request_, std::vector<float>(captureRate));
    feed(*request_, decodedAudio(promptPath(u"demo-nogo"_qs), captureRate));
    SpeechListener file;
    const auto fileTask = englishRecognizer().recognize(writeAudio(voice_, captureRate),
                                                        SpeechOptions(), file.handler());
    ASSERT_TRUE(file.waitForEnd());
    EXPECT_TRUE(file.heard().text().contains(u"mailbox"_qs));
    EXPECT_TRUE(waitForText(u"demonstration"_qs));
}

TEST_F(LiveSpeechTest, GivesTheNextRequestItsOwnText) {
    feed(*request_, voice_);
    ASSERT_TRUE(waitForText(u"message"_qs));
    SpeechListener next;
    const auto request = englishRecognizer().makeBufferRequest({captureRate, 1}, SpeechOptions());
    const auto task = englishRecognizer().recognize(request, next.handler());
    task_->cancel();
    feed(*request, decodedAudio(promptPath(u"demo-nogo"_qs), captureRate));
    ASSERT_TRUE(
        next.waitFor([](const auto &heard) { return heard.text().contains(u"demonstration"_qs); }));
    EXPECT_FALSE(next.heard().text().contains(u"reply"_qs));
}

/// A live recognition on a clock of the test's: nothing is heard but when time passes.
class LiveRecognitionTest : public testing::Test {
protected:
    LiveRecognitionTest() {
        std::make_shared<LiveRecognition>(request_, engine_.engine, engine_.worker,
                                          cancellation_.get_token(), listener_.handler())
            ->start();
    }
    void TearDown() override {
        cancellation_.request_stop();
        engine_.pass(std::chrono::seconds(1));
    }

    /// What is reported next, once `samples` have been said.
    QString textAfter(std::span<const float> samples) {
        feed(*request_, samples);
        engine_.pass(std::chrono::seconds(1));
        return listener_.heard().text();
    }

    /// Whether a sentence stays as it was while another one that began so many seconds after it
    /// goes on.
    bool isSettledByAPauseOf(double seconds) {
        textAfter(sentence_);
        textAfter(std::vector<float>(static_cast<std::size_t>(seconds * captureRate)));
        const std::vector<float> next = decodedAudio(promptPath(u"auth-incorrect"_qs), captureRate);
        const std::size_t half = captureRate * 3 / 4;
        textAfter(std::span(next).first(half));
        const QList<SpeechSegment> before = wordsOfTheSentence();
        textAfter(std::span(next).subspan(half, half));
        const QList<SpeechSegment> after = wordsOfTheSentence();
        return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                          [](const SpeechSegment &word, const SpeechSegment &same) {
                              return word.substring == same.substring &&
                                     word.timestamp == same.timestamp;
                          });
    }

    QList<SpeechSegment> wordsOfTheSentence() {
        QList<SpeechSegment> words = listener_.heard().results.back().segments;
        const double end = static_cast<double>(sentence_.size()) / captureRate;
        words.removeIf([end](const SpeechSegment &word) { return word.timestamp > end; });
        EXPECT_GT(words.size(), 10);
        return words;
    }

    RealEngine engine_{liveModel};
    SpeechListener listener_;
    std::stop_source cancellation_;
    const std::shared_ptr<LiveRequest> request_ =
        std::make_shared<LiveRequest>(AudioFormat{captureRate, 1});
    const std::vector<float> sentence_ = decodedAudio(promptPath(u"vm-nobox"_qs), captureRate);
    const std::vector<float> silence_ = std::vector<float>(captureRate * 6 / 5);
};

TEST_F(LiveRecognitionTest, ShowsTheFirstWordsAfterAPauseAndLeavesWhatWasSaidBefore) {
    textAfter(sentence_);
    const QString before = textAfter(silence_);
    EXPECT_TRUE(before.endsWith(u"mailbox."_qs)) << qPrintable(before);
    const std::vector<float> next = decodedAudio(promptPath(u"auth-incorrect"_qs), captureRate);
    const QString after = textAfter(std::span(next).first(captureRate * 5 / 4));
    EXPECT_TRUE(after.startsWith(before + u" Password"_qs)) << qPrintable(after);
}

TEST_F(LiveRecognitionTest, MayStillChangeWhatWasSaidBeforeAShortPause) {
    EXPECT_FALSE(isSettledByAPauseOf(0.15));
}

TEST_F(LiveRecognitionTest, LeavesWhatWasSaidBeforeALongerOne) {
    EXPECT_TRUE(isSettledByAPauseOf(0.6));
}

TEST_F(LiveRecognitionTest, HearsTheEndOfASentenceThatIsOverBeforeItListensAgain) {
    const std::span<const float> sentence(sentence_);
    const QString before = textAfter(sentence.first(sentence.size() / 2));
    EXPECT_FALSE(before.contains(u"mailbox"_qs)) << qPrintable(before);
    feed(*request_, sentence.subspan(sentence.size() / 2));
    feed(*request_, silence_);
    const std::vector<float> next = decodedAudio(promptPath(u"demo-nogo"_qs), captureRate);
    const QString after = textAfter(std::span(next).first(std::size_t{2} * captureRate));
    EXPECT_TRUE(after.contains(u"mailbox. I'm afraid"_qs)) << qPrintable(after);
}

TEST_F(LiveRecognitionTest, ReportsTheTextEachTimeThoughItIsTheSame) {
    const QString before = textAfter(decodedAudio(promptPath(u"demo-nogo"_qs), captureRate));
    const std::size_t count = listener_.heard().results.size();
    EXPECT_EQ(textAfter(std::span(silence_).first(captureRate / 4)), before);
    EXPECT_EQ(listener_.heard().results.size(), count + 1);
    textAfter(silence_);
    textAfter(silence_);
    EXPECT_EQ(listener_.heard().results.size(), count + 2) << "nobody speaks any more";
}

} // namespace
} // namespace lorvane
