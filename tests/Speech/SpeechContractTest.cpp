#include "Fakes/FakeSpeech.h"
#include "Speech/AnalysisListener.h"
#include "Speech/SpeechListener.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

// What every recogniser does, the real one and the one for tests.
class SpeechContractTest : public testing::TestWithParam<const char *> {
protected:
    SpeechContractTest() { fake_.hasAnalyzer = true; }

    Speech &speech() {
        if (GetParam() == std::string_view("fake"))
            return fake_;
        return realSpeech();
    }
    /// Lets the fake answer as the real one does by itself.
    void answer() {
        for (const auto &request : fake_.fileRequests()) {
            if (!request->isCancelled)
                request->give(FakeSpeech::result(QString(), true));
        }
    }

private:
    FakeSpeech fake_;
};

TEST_P(SpeechContractTest, HasARecogniserForEveryEnglish) {
    for (const QString &locale : {u"en-AU"_qs, u"en-US"_qs, u"en-GB"_qs, u"en_NZ"_qs}) {
        const auto recognizer = speech().makeRecognizer(locale);
        ASSERT_TRUE(recognizer) << qPrintable(locale);
        EXPECT_EQ(recognizer->localeIdentifier(), locale);
        EXPECT_TRUE(recognizer->isAvailable());
        EXPECT_TRUE(recognizer->supportsOnDeviceRecognition());
    }
}

TEST_P(SpeechContractTest, HasNoRecogniserForALanguageWithoutAModel) {
    for (const QString &locale : {u"de-DE"_qs, u"ja-JP"_qs, u""_qs, u"english"_qs})
        EXPECT_FALSE(speech().makeRecognizer(locale)) << qPrintable(locale);
}

TEST_P(SpeechContractTest, GivesOneFinalResultForAFile) {
    SpeechListener listener;
    const auto recognizer = speech().makeRecognizer(u"en-AU"_qs);
    const auto task = recognizer->recognize(writeAudio(std::vector<float>(16000)), SpeechOptions(),
                                            listener.handler());
    answer();
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_EQ(listener.heard().results.size(), 1U);
    EXPECT_TRUE(listener.heard().isFinal());
    EXPECT_EQ(listener.heard().text(), QString());
}

TEST_P(SpeechContractTest, OutlivesItsMakerAndCanBeCancelledTwice) {
    SpeechListener listener;
    auto recognizer = speech().makeRecognizer(u"en-AU"_qs);
    const auto request = recognizer->makeBufferRequest({48000, 2}, SpeechOptions());
    const auto task = recognizer->recognize(request, listener.handler());
    recognizer.reset();
    const std::vector<float> frames(4096);
    request->append({frames.data(), 2048, 2});
    task->cancel();
    task->cancel();
    request->append({frames.data(), 2048, 2});
    EXPECT_FALSE(listener.heard().isFinal());
}

TEST_P(SpeechContractTest, EndsAnAbandonedAnalysisOnceAndAtOnce) {
    const QString path = writeAudio(lorvane::speech(10).first);
    for (const bool byDestroying : {false, true}) {
        AnalysisListener listener;
        auto analyzer = speech().makeAnalyzer(u"en-AU"_qs, {});
        ASSERT_TRUE(analyzer);
        listener.start(*analyzer, path);
        EXPECT_EQ(listener.heard().ends, 0);
        if (!byDestroying)
            analyzer->cancelAndFinishNow();
        else
            analyzer.reset();
        EXPECT_EQ(listener.heard().ends, 1);
        analyzer.reset();
        EXPECT_EQ(listener.heard().ends, 1);
        EXPECT_FALSE(listener.heard().error);
        EXPECT_EQ(listener.heard().resultsAfterTheEnd, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Speech, SpeechContractTest, testing::Values("fake", "real"),
                         [](const auto &tested) { return std::string(tested.param); });

} // namespace
} // namespace lorvane
