#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"
#include "Speech/SpeechEngine.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace lorvane {
namespace {

constexpr std::size_t longest = std::size_t{3} * SpeechModel::sampleRate;

/// A recording without what stands before and after its voice, but for a margin in seconds.
std::vector<float> trimmed(const std::vector<float> &samples, double margin) {
    float highest = 0;
    for (const float sample : samples)
        highest = std::max(highest, std::abs(sample));
    const auto isLoud = [&](float sample) { return std::abs(sample) > highest / 30; };
    const auto room = static_cast<std::ptrdiff_t>(margin * SpeechModel::sampleRate);
    const auto first = std::find_if(samples.begin(), samples.end(), isLoud);
    const auto last = std::find_if(samples.rbegin(), samples.rend(), isLoud).base();
    return {first - std::min(room, first - samples.begin()),
            last + std::min(room, samples.end() - last)};
}

TEST(FirstAndLastWord, AreHeardInAudioThatIsCutTight) {
    ASSERT_GE(prompts().size(), 100U) << "asterisk-core-sounds-en-g722 is missing";
    OnnxRuntime runtime(1);
    SpeechEngine engine(runtime,
                        ModelFolder::find(QStringLiteral(LORVANE_MODELS), u"en"_qs).value(),
                        QStringLiteral(LORVANE_MODELS "/vad/silero.onnx"));
    for (const QString &size : {QString(liveModel), QString(fileModel)}) {
        const auto heard = [&](const std::vector<float> &samples) {
            return spokenWords(
                makeResult(engine.recognize(samples, size, SpeechOptions(), {}), true)
                    .formattedString);
        };
        int count = 0;
        int firstWords = 0;
        int lastWords = 0;
        for (std::size_t i = 0; i < prompts().size() && count < 24; i += 5) {
            const std::vector<float> samples = decodedAudio(prompts()[i].path);
            if (samples.size() > longest)
                continue;
            const QStringList said = spokenWords(prompts()[i].transcript);
            const QStringList whole = heard(samples);
            if (whole != said)
                continue; // it is hard to hear anyway
            for (const double margin : {0., 0.05}) {
                const QStringList words = heard(trimmed(samples, margin));
                ++count;
                firstWords += words.value(0) == said.first() ? 1 : 0;
                lastWords += words.value(words.size() - 1) == said.last() ? 1 : 0;
                if (words != said)
                    std::printf("%s, %.0f ms: %s\n", qPrintable(prompts()[i].transcript),
                                margin * 1000, qPrintable(words.join(u' ')));
            }
        }
        std::printf("Figure: %s: of %d recordings cut tight, %d first and %d last words heard\n",
                    qPrintable(size), count, firstWords, lastWords);
        EXPECT_EQ(count, 24);
        // A consonant that begins with the audio may be heard as another: "do" for "to".
        EXPECT_GE(firstWords, count - 1);
        EXPECT_EQ(lastWords, count);
    }
}

} // namespace
} // namespace lorvane
