#include "Speech/AnalysisListener.h"
#include "Speech/Decoding.h"
#include "Speech/RealEngine.h"
#include "Speech/WordErrors.h"

namespace lorvane {
namespace {

/// Longer than the model can take: it begins to repeat itself.
constexpr double tooLong = 50;

double errorRate(const QString &said, const QList<TimedWord> &words) {
    return wordErrors(spokenWords(said), spokenWords(makeResult(words, true).formattedString))
        .rate();
}

TEST(LostPlace, IsFoundAgainInRealSpeech) {
    const auto spoken = speech(tooLong);
    const std::vector<float> &samples = spoken.first;
    const QString &said = spoken.second;
    const QString size = u"tiny"_qs;
    const double duration = static_cast<double>(samples.size()) / sampleRate;

    OnnxRuntime runtime(1);
    const auto folder = ModelFolder::find(QStringLiteral(LORVANE_MODELS), u"en"_qs);
    const TokenTable tokens(folder->tokens);
    SpeechModel model(runtime, folder->sizes[size]);
    Hearing hearing = model.hear(samples, {});
    const Decoding lost = decodeGreedily(hearing, false, {});
    ASSERT_TRUE(lost.isBroken) << "this recording tells nothing";
    const double before = errorRate(said, timedWords(lost, tokens, duration));

    RealEngine real(size);
    QList<TimedWord> words;
    real.run([&](const std::stop_token &stop) {
        words = real.engine->use().recognizeStretch(samples, {0, duration}, size, {}, stop);
    });
    const double after = errorRate(said, words);
    std::printf("Figure: %.0f s heard at once, %.0f%% wrong up to the loop, %.0f%% now\n", duration,
                100 * before, 100 * after);
    EXPECT_LE(after, 0.25);
    EXPECT_LE(after, before / 2);
    for (qsizetype i = 1; i < words.size(); ++i)
        EXPECT_GE(words[i].start, words[i - 1].start);
}

} // namespace
} // namespace lorvane
