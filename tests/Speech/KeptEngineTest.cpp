#include "Speech/AnalysisListener.h"
#include "Speech/RealEngine.h"

namespace lorvane {
namespace {

constexpr std::chrono::minutes minute(1);
constexpr double megabyte = 1 << 20;

TEST(KeptEngine, GivesTheMemoryOfAModelBackThatIsNotUsedAndLoadsItAgain) {
    RealEngine real(QStringLiteral("tiny"));
    const std::vector<float> samples = decodedAudio(promptPath(u"vm-nobox"_qs));
    const auto hear = [&] {
        QString text;
        real.run([&](const std::stop_token &stop) {
            text = makeResult(real.engine->use().recognize(samples, real.engine->size(), {}, stop),
                              true)
                       .formattedString;
        });
        return text;
    };
    const qint64 before = residentBytes();
    real.engine->loadInBackground();
    const QString text = hear();
    EXPECT_TRUE(text.contains(u"mailbox"_qs));
    const qint64 loaded = residentBytes();
    real.pass(9 * minute);
    EXPECT_EQ(hear(), text);
    real.pass(9 * minute);
    const qint64 kept = residentBytes();
    real.pass(minute);
    const qint64 givenBack = residentBytes();
    std::printf("Figure: the live model needs %.0f MB, of which %.0f are given back\n",
                static_cast<double>(loaded - before) / megabyte,
                static_cast<double>(kept - givenBack) / megabyte);
    EXPECT_GT(static_cast<double>(kept - before), 0.8 * static_cast<double>(loaded - before));
    EXPECT_LT(static_cast<double>(givenBack - before), 0.5 * static_cast<double>(loaded - before));
    EXPECT_EQ(hear(), text);
    EXPECT_GT(residentBytes(), givenBack);
}

TEST(KeptEngine, GivesBackSoonWhatRecognitionHasFreed) {
    RealEngine real(QStringLiteral("tiny"));
    const std::vector<float> samples = decodedAudio(promptPath(u"vm-nobox"_qs));
    std::vector<float> longer;
    for (int i = 0; i < 5; ++i)
        longer.insert(longer.end(), samples.begin(), samples.end());
    real.run([&](const std::stop_token &stop) {
        real.engine->use().recognize(longer, real.engine->size(), {}, stop);
    });
    const qint64 busy = residentBytes();
    real.pass(KeptEngine::shortRest - std::chrono::seconds(1));
    const qint64 paused = residentBytes();
    real.pass(std::chrono::seconds(1));
    const qint64 rested = residentBytes();
    std::printf("Figure: after a short rest %.0f MB of %.0f are given back\n",
                static_cast<double>(busy - rested) / megabyte,
                static_cast<double>(busy) / megabyte);
    EXPECT_NEAR(static_cast<double>(paused), static_cast<double>(busy), 2 * megabyte);
    EXPECT_LT(static_cast<double>(rested), static_cast<double>(busy) - 10 * megabyte);
}

} // namespace
} // namespace lorvane
