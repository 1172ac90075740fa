#include "Speech/Rehearing.h"

#include "Speech/SpeechModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lorvane {
namespace {

constexpr double duration = 24;

/// A word each half second, and a model that loses itself at some moments when it hears so many
/// seconds at once.
class Script {
public:
    Script(std::vector<double> traps, double longest)
        : traps_(std::move(traps)), longest_(longest) {}

    QStringList hear(const std::vector<float> &samples) {
        QStringList texts;
        for (const TimedWord &word :
             hearWithoutLoss(samples, {0, duration}, [this](VoiceSpan part) { return at(part); }))
            texts.append(word.text);
        return texts;
    }

    std::vector<VoiceSpan> heard;

private:
    Attempt at(VoiceSpan part) {
        heard.push_back(part);
        Attempt attempt;
        double end = part.end;
        for (const double trap : traps_) {
            if (part.end - part.start > longest_ && trap >= part.start && trap < end)
                end = trap;
        }
        attempt.isBroken = end < part.end;
        for (int i = 0; i < 2 * static_cast<int>(duration); ++i) {
            if (i * 0.5 >= part.start && i * 0.5 < end)
                attempt.words.append({QString::number(i), i * 0.5, i * 0.5 + 0.4});
        }
        return attempt;
    }

    std::vector<double> traps_;
    double longest_;
};

std::vector<float> noise() {
    std::vector<float> samples(static_cast<std::size_t>(duration) * SpeechModel::sampleRate);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = i % 2 ? 0.1F : -0.1F;
    return samples;
}

QStringList allWords() {
    QStringList words;
    for (int i = 0; i < 2 * static_cast<int>(duration); ++i)
        words.append(QString::number(i));
    return words;
}

TEST(Rehearing, LeavesAStretchAsItIsThatWasHeardToItsEnd) {
    Script script({}, 0);
    EXPECT_EQ(script.hear(noise()), allWords());
    EXPECT_EQ(script.heard.size(), 1U);
}

TEST(Rehearing, HearsWhatWasSaidBehindALoop) {
    for (const double trap : {0.0, 3.0, 12.0, 17.5, 23.0}) {
        Script script({trap}, 5);
        EXPECT_EQ(script.hear(noise()), allWords()) << trap;
        EXPECT_LE(script.heard.size(), 9U) << trap;
    }
    EXPECT_EQ(Script({2, 9, 15, 21}, 5).hear(noise()), allWords());
}

TEST(Rehearing, LosesLittleAroundAPlaceThatCannotBeHeardAtAll) {
    Script script({14.2}, 0);
    const QStringList words = script.hear(noise());
    EXPECT_GE(words.size(), allWords().size() - 6);
    EXPECT_EQ(words.first(), u"0"_qs);
    EXPECT_EQ(words.last(), allWords().last());
}

TEST(Rehearing, ComesToAnEndWhereNothingCanBeHeard) {
    std::vector<double> traps;
    traps.reserve(static_cast<std::size_t>(2 * duration));
    for (int half = 0; half < 2 * duration; ++half)
        traps.push_back(half / 2.0);
    Script script(traps, 0);
    script.hear(noise());
    EXPECT_LE(script.heard.size(), 40U);
}

TEST(Rehearing, DividesWhereNobodySpeaks) {
    std::vector<float> samples = noise();
    const auto first = static_cast<std::ptrdiff_t>(13.1 * SpeechModel::sampleRate);
    std::fill_n(samples.begin() + first, SpeechModel::sampleRate / 5, 0.F);
    Script script({3}, 20);
    script.hear(samples);
    ASSERT_EQ(script.heard.size(), 3U);
    EXPECT_NEAR(script.heard[1].end, 13.2, 0.06);
    EXPECT_EQ(script.heard[2].start, script.heard[1].end);
    EXPECT_EQ(script.heard[2].end, duration);
}

} // namespace
} // namespace lorvane
