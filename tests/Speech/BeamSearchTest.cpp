#include "Speech/BeamSearch.h"
#include "Speech/KnownSentences.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lorvane {
namespace {

QString found(KnownSentences decoder, const QStringList &phrases = {}) {
    PhraseTrie trie;
    for (const QString &phrase : phrases)
        trie.add(table().encode(phrase), 0, 2);
    const auto decoding = searchBeam(decoder, 50, trie, table(), {});
    return decoding ? textOf(*decoding) : u"nothing"_qs;
}

TEST(BeamSearch, FindsTheMostProbableTextAsAWhole) {
    // The most probable first word begins no text that is probable as a whole.
    EXPECT_EQ(
        found(KnownSentences(
            {{u"a cat"_qs, 0.2}, {u"a dog"_qs, 0.2}, {u"a horse"_qs, 0.2}, {u"the bird"_qs, 0.4}})),
        u"the bird"_qs);
}

TEST(BeamSearch, TakesAPhraseThatIsNearlyAsProbable) {
    const std::map<QString, double> sentences{{u"Call Kovalchik now"_qs, 0.9},
                                              {u"Call Kowalczyk now"_qs, 0.1}};
    EXPECT_EQ(found(KnownSentences(sentences)), u"Call Kovalchik now"_qs);
    EXPECT_EQ(found(KnownSentences(sentences), {u"Kowalczyk"_qs}), u"Call Kowalczyk now"_qs);
}

TEST(BeamSearch, TakesNoPhraseThatIsNotHeard) {
    EXPECT_EQ(found(KnownSentences(
                        {{u"Call mother now"_qs, 0.9999999}, {u"Call Kowalczyk now"_qs, 1e-9}}),
                    {u"Kowalczyk"_qs}),
              u"Call mother now"_qs);
}

TEST(BeamSearch, GivesNothingForHalfAPhrase) {
    const std::map<QString, double> sentences{{u"we met in New Jersey"_qs, 0.7},
                                              {u"we met in New York"_qs, 0.3}};
    EXPECT_EQ(found(KnownSentences(sentences), {u"New York City"_qs}), u"we met in New Jersey"_qs);
    EXPECT_EQ(found(KnownSentences(sentences), {u"New York"_qs}), u"we met in New York"_qs);
}

TEST(BeamSearch, GivesNothingForAPhraseInsideALongerWord) {
    EXPECT_EQ(found(KnownSentences({{u"the cat"_qs, 0.7}, {u"the dogma"_qs, 0.3}}), {u"dog"_qs}),
              u"the cat"_qs);
}

TEST(BeamSearch, NeverGivesAnEmptyText) {
    EXPECT_EQ(found(KnownSentences({{u""_qs, 0.9}, {u"yes"_qs, 0.1}})), u"yes"_qs);
}

TEST(BeamSearch, GivesEachTokenItsAttentionAndProbability) {
    KnownSentences decoder({{u"one two"_qs, 0.6}, {u"one three"_qs, 0.4}});
    const auto decoding = searchBeam(decoder, 50, PhraseTrie(), table(), {});
    ASSERT_TRUE(decoding);
    ASSERT_EQ(decoding->tokens.size(), 2U);
    EXPECT_EQ(decoding->frameCount, KnownSentences::frameCount);
    EXPECT_EQ(decoding->attention, (std::vector<float>{1, 0, 0, 0, 0, 1, 0, 0}));
    EXPECT_NEAR(decoding->logProbabilities[0], 0, 1e-4);
    EXPECT_NEAR(decoding->logProbabilities[1], std::log(0.6), 1e-4);
    EXPECT_LE(decoder.widest, 4U);
}

TEST(BeamSearch, LeavesATextThatRunsInCircles) {
    const QString loop = u"no "_qs.repeated(30).trimmed();
    EXPECT_EQ(found(KnownSentences({{loop, 0.9}, {u"not now"_qs, 0.1}}), {u"yes"_qs}),
              u"not now"_qs);
}

TEST(BeamSearch, GivesUpATextThatIsTooFarBehind) {
    const auto foundWith = [](double share) {
        std::map<QString, double> sentences{{u"the bird"_qs, share}};
        for (const auto *animal : {u"cat", u"dog", u"cow", u"hen", u"pig", u"fox"})
            sentences[u"a "_qs + QString::fromUtf16(animal)] = (1 - share) / 6;
        return found(KnownSentences(sentences));
    };
    EXPECT_EQ(foundWith(0.19), u"the bird"_qs);
    EXPECT_EQ(foundWith(0.17), u"a cat"_qs);
}

TEST(BeamSearch, TakesNoTextThatLeavesOutWhatIsMostProbableWordByWord) {
    // All that is longer is less probable as a whole.
    EXPECT_EQ(found(KnownSentences({{u"Yes."_qs, 0.4},
                                    {u"Well, we all went home again"_qs, 0.25},
                                    {u"Well, we all went home today"_qs, 0.2},
                                    {u"Well, he"_qs, 0.15}})),
              u"Well, we all went home again"_qs);
    // Not even if it falls far behind.
    std::map<QString, double> sentences{{u"Yes."_qs, 0.49}};
    for (const auto *who : {u"I", u"we", u"you", u"they", u"he", u"she", u"it", u"one"})
        sentences[u"Well, %1 will go home together"_qs.arg(who)] = 0.51 / 8;
    EXPECT_TRUE(found(KnownSentences(sentences)).startsWith(u"Well, "_qs));
    // But a few letters less are no loss.
    EXPECT_EQ(
        found(KnownSentences({{u"Yes."_qs, 0.4}, {u"Well, so"_qs, 0.3}, {u"Well, then"_qs, 0.3}})),
        u"Yes."_qs);
}

TEST(BeamSearch, FindsNothingWhereTheMostProbableTokensRunInCirclesOrComeToNoEnd) {
    // Another text is no answer: what was said behind the loop would be lost.
    const QString loop = u"no "_qs.repeated(30).trimmed();
    EXPECT_EQ(found(KnownSentences({{loop, 0.6}, {u"not now"_qs, 0.4}})), u"nothing"_qs);
    KnownSentences endless({{u"one two three four five six"_qs, 0.6}, {u"one"_qs, 0.4}});
    EXPECT_FALSE(searchBeam(endless, 3, PhraseTrie(), table(), {}));
}

TEST(FoundPhrases, AreWholeWordsAndTheLongest) {
    PhraseTrie trie;
    trie.add(table().encode(u"New York"_qs), 0, 1);
    trie.add(table().encode(u"New York City"_qs), 1, 1);
    trie.add(table().encode(u"dog"_qs), 2, 1);
    const auto tokens = table().encode(u"A dogma of New York City, New York and a dog."_qs);
    const std::vector<PhraseSpan> spans = findPhrases(tokens, trie, table());
    ASSERT_EQ(spans.size(), 3U);
    EXPECT_EQ(spans[0].phrase, 1);
    EXPECT_EQ(spans[1].phrase, 0);
    EXPECT_EQ(spans[2].phrase, 2);
}

} // namespace
} // namespace lorvane
