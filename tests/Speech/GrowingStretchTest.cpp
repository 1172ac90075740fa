#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"
#include "Speech/RealEngine.h"

namespace lorvane {
namespace {

/// A draft is calculated as a whole, which isn't the same to the last bit.
constexpr double tolerance = 2.5 * SpeechModel::secondsPerFrame;

TEST(GrowingStretch, ReadsTheSameWhateverItReadBefore) {
    // "You cannot reply to this message because the sender does not have a mailbox."
    const std::vector<float> samples = decodedAudio(promptPath(u"vm-nobox"_qs));
    const VoiceSpan whole{0, static_cast<double>(samples.size()) / SpeechModel::sampleRate};
    RealEngine real(liveModel);
    const auto read = [&](const QString &draft) {
        QList<TimedWord> words;
        real.run([&](const std::stop_token &stop) {
            words = real.engine->use().recognizeGrowing(samples, whole, liveModel, draft, stop);
        });
        return words;
    };
    const QList<TimedWord> words = read({});
    const QString text = makeResult(words, true).formattedString;
    ASSERT_TRUE(text.contains(u"does not have a mailbox"_qs)) << qPrintable(text);
    const QStringList drafts{
        text,
        text + u" I'm afraid it won't be demonstrated."_qs,
        u"You cannot reply."_qs,
        u"You cannot reply to this massage because the sender does not have a mailbox."_qs,
        u"Password incorrect."_qs,
        u"You cannot"_qs + u" reply"_qs.repeated(40),
    };
    for (const QString &draft : drafts) {
        const QList<TimedWord> again = read(draft);
        ASSERT_EQ(makeResult(again, true).formattedString, text) << qPrintable(draft);
        for (qsizetype i = 0; i < words.size(); ++i) {
            EXPECT_NEAR(again[i].start, words[i].start, tolerance) << qPrintable(words[i].text);
            EXPECT_NEAR(again[i].end, words[i].end, tolerance) << qPrintable(words[i].text);
        }
    }
}

} // namespace
} // namespace lorvane
