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

} // namespace
} // namespace lorvane
