#include "Speech/Decoding.h"

#include "Speech/BeamSearch.h"
#include "Speech/KnownSentences.h"
#include "Speech/PhraseBias.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

Hearing hearing(const std::map<QString, double> &sentences, std::size_t mostTokens = 50) {
    return {std::make_unique<KnownSentences>(sentences), mostTokens, 0};
}

Decoding greedily(const std::map<QString, double> &sentences, std::size_t mostTokens = 50) {
    Hearing heard = hearing(sentences, mostTokens);
    return decodeGreedily(heard, true, {});
}

TEST(Decoding, IsWholeWhereTheModelComesToAnEnd) {
    const Decoding decoding = greedily({{u"no no no, not now"_qs, 1}});
    EXPECT_EQ(textOf(decoding), u"no no no, not now"_qs);
    EXPECT_FALSE(decoding.isBroken);
}

TEST(Decoding, IsBrokenWhereTheModelRepeatsItself) {
    const Decoding decoding = greedily({{u"so he said"_qs + u" you know"_qs.repeated(20), 1}}, 200);
    EXPECT_EQ(textOf(decoding), u"so he said you know"_qs);
    EXPECT_TRUE(decoding.isBroken);
    EXPECT_EQ(decoding.attention.size(), decoding.tokens.size() * decoding.frameCount);
    EXPECT_EQ(decoding.logProbabilities.size(), decoding.tokens.size());
}

TEST(Decoding, IsBrokenWhereTheModelComesToNoEnd) {
    const Decoding decoding =
        greedily({{u"one two three four five six seven eight nine"_qs, 1}}, 5);
    EXPECT_EQ(decoding.tokens.size(), 5U);
    EXPECT_TRUE(decoding.isBroken);
}

TEST(DecodingWithDraft, TakesStepsOnlyFromWhereTheDraftDiffers) {
    const QString sentence = u"one two three four"_qs;
    const Decoding without = greedily({{sentence, 0.9}, {u"one tree"_qs, 0.1}});
    const std::map<QString, int> stepsWith{
        {sentence, 0},          {sentence + u" five"_qs, 0},   {u"one two"_qs, 2},
        {u"one two six"_qs, 2}, {u"one six three four"_qs, 3}, {u"six two three four"_qs, 4}};
    for (const auto &[draft, steps] : stepsWith) {
        auto sentences = std::make_unique<KnownSentences>(
            std::map<QString, double>{{sentence, 0.9}, {u"one tree"_qs, 0.1}});
        const KnownSentences &decoder = *sentences;
        Hearing heard{std::move(sentences), 50, 0};
        const Decoding with = decodeGreedily(heard, true, {}, table().encode(draft));
        EXPECT_EQ(decoder.steps, steps) << qPrintable(draft);
        EXPECT_EQ(with.tokens, without.tokens) << qPrintable(draft);
        EXPECT_EQ(with.logProbabilities, without.logProbabilities) << qPrintable(draft);
        EXPECT_EQ(with.attention, without.attention) << qPrintable(draft);
    }
}

TEST(DecodingWithDraft, IsAsBrokenAsWithoutIt) {
    const QString loop = u"so he said"_qs + u" you know"_qs.repeated(20);
    Hearing heard = hearing({{loop, 1}}, 200);
    const Decoding decoding = decodeGreedily(heard, false, {}, table().encode(loop));
    EXPECT_EQ(textOf(decoding), u"so he said you know"_qs);
    EXPECT_TRUE(decoding.isBroken);
    Hearing cut = hearing({{u"one two three four"_qs, 1}}, 3);
    EXPECT_TRUE(decodeGreedily(cut, false, {}, table().encode(u"one two three four"_qs)).isBroken);
}

Decoding withBeam(const std::map<QString, double> &sentences, std::size_t mostTokens = 50) {
    Hearing heard = hearing(sentences, mostTokens);
    return decodeWithBeam(heard, table(), {});
}

TEST(DecodingWithBeam, TakesTheMostProbableTextAsAWhole) {
    const std::map<QString, double> sentences{
        {u"a cat"_qs, 0.2}, {u"a dog"_qs, 0.2}, {u"a horse"_qs, 0.2}, {u"the bird"_qs, 0.4}};
    EXPECT_NE(textOf(greedily(sentences)), u"the bird"_qs);
    const Decoding decoding = withBeam(sentences);
    EXPECT_EQ(textOf(decoding), u"the bird"_qs);
    EXPECT_EQ(decoding.logProbabilities.size(), decoding.tokens.size());
}

TEST(DecodingWithBeam, FollowsNoSecondTextWhereTheModelIsSure) {
    auto sentences = std::make_unique<KnownSentences>(
        std::map<QString, double>{{u"one two three"_qs, 0.9}, {u"one tree"_qs, 0.1}});
    const KnownSentences &decoder = *sentences;
    Hearing heard{std::move(sentences), 50, 0};
    EXPECT_EQ(textOf(decodeWithBeam(heard, table(), {})), u"one two three"_qs);
    EXPECT_EQ(decoder.widest, 1U);
}

TEST(DecodingWithBeam, IsBrokenWhereTheModelRepeatsItself) {
    // Another text is no answer: what was said behind the loop would be lost.
    const std::map<QString, double> sentences{
        {u"so he said"_qs + u" you know"_qs.repeated(20), 0.6}, {u"so he did"_qs, 0.4}};
    const Decoding decoding = withBeam(sentences, 200);
    EXPECT_EQ(textOf(decoding), u"so he said you know"_qs);
    EXPECT_TRUE(decoding.isBroken);
    EXPECT_EQ(decoding.logProbabilities.size(), decoding.tokens.size());
}

TEST(DecodingWithBeam, IsBrokenWhereTheModelComesToNoEnd) {
    EXPECT_TRUE(withBeam({{u"one two three four five six seven eight nine"_qs, 1}}, 5).isBroken);
}

/// What is written down when `phrase` is listened for, and what was heard without it is so many
/// times as probable, for each token of the phrase, in logarithms.
QString listening(const QString &phrase, const QString &plain, const QString &withPhrase,
                  double cost) {
    const double share = std::exp(-cost * static_cast<double>(table().encode(phrase).size()));
    Hearing heard = hearing({{plain, 1}, {withPhrase, share}});
    return textOf(decodeWithPhrases(heard, {phrase}, table(), {}));
}

TEST(ListeningForPhrases, TakesOneThatIsNearlyAsProbableAsWhatItSoundsLike) {
    EXPECT_EQ(listening(u"Pannartz"_qs, u"said Panorse now"_qs, u"said Pannartz now"_qs, 1),
              u"said Pannartz now"_qs);
    EXPECT_EQ(listening(u"Pannartz"_qs, u"said Panorse now"_qs, u"said Pannartz now"_qs, 4),
              u"said Panorse now"_qs);
    EXPECT_EQ(listening(u"Pannartz"_qs, u"said yellow now"_qs, u"said Pannartz now"_qs, 1),
              u"said yellow now"_qs);
}

TEST(ListeningForPhrases, TrustsANameMoreThanAWord) {
    EXPECT_EQ(listening(u"Pannartz"_qs, u"said Panorse now"_qs, u"said Pannartz now"_qs, 2.25),
              u"said Pannartz now"_qs);
    EXPECT_EQ(listening(u"pannartz"_qs, u"said panorse now"_qs, u"said pannartz now"_qs, 2.25),
              u"said panorse now"_qs);
}

TEST(ListeningForPhrases, TakesNoOtherFormOfAWordThatWasHeard) {
    EXPECT_EQ(listening(u"callers"_qs, u"he was calling now"_qs, u"he was callers now"_qs, 1),
              u"he was calling now"_qs);
    EXPECT_EQ(
        listening(u"participant"_qs, u"two participants now"_qs, u"two participant now"_qs, 1),
        u"two participants now"_qs);
}

TEST(ListeningForPhrases, TakesNoneTwiceInARow) {
    EXPECT_EQ(listening(u"pleasanter"_qs, u"far pleasanter uneasier"_qs,
                        u"far pleasanter pleasanter"_qs, 0.5),
              u"far pleasanter uneasier"_qs);
}

TEST(ListeningForPhrases, LosesNothingOfWhatWasSaidForAPhrase) {
    const QString plain = u"said Panorse now and then we all went home again"_qs;
    for (const QString &cutOff : {u"said Pannartz"_qs, u"said Pannartz again"_qs})
        EXPECT_EQ(listening(u"Pannartz"_qs, plain, cutOff, 1), plain);
    // But what was heard as many words may be one.
    EXPECT_EQ(listening(u"LGBTQIA"_qs, u"said L G B T Q I A now"_qs, u"said LGBTQIA now"_qs, 0.5),
              u"said LGBTQIA now"_qs);
}

TEST(ListeningForPhrases, LeavesABrokenTextToBeHeardAgain) {
    Hearing heard = hearing({{u"no"_qs + u" no"_qs.repeated(30), 0.9}, {u"Nowak"_qs, 0.1}}, 100);
    EXPECT_TRUE(decodeWithPhrases(heard, {u"Nowak"_qs}, table(), {}).isBroken);
}

} // namespace
} // namespace lorvane
