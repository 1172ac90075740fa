#include "Speech/SecondHearing.h"
#include "Speech/Abandoned.h"
#include "Speech/SameWords.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace lorvane {
namespace {

/// The words of a text, half a second each from `start` on, with one probability for all but those
/// that are followed by a number: "maybe/-0.5".
QList<TimedWord> words(const QString &text, double start = 0, double logProbability = -0.1) {
    QList<TimedWord> words;
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        const double own = word.contains(u'/') ? word.section(u'/', 1).toDouble() : logProbability;
        words.append({word.section(u'/', 0, 0), start, start + 0.4, own});
        start += 0.5;
    }
    return words;
}

QString textOf(const QList<TimedWord> &words) {
    QStringList texts;
    for (const TimedWord &word : words)
        texts.append(word.text);
    return texts.join(u' ');
}

QString surer(const QString &text, const QString &other) {
    return textOf(surerWords(words(text), words(other)));
}

TEST(SameWords, AreInTheOrderOfBoth) {
    EXPECT_EQ(sameWords({u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs}, {u"b"_qs, u"x"_qs, u"d"_qs}),
              (std::vector<int>{-1, 0, -1, 2}));
    EXPECT_EQ(sameWords({u"a"_qs}, {}), (std::vector<int>{-1}));
    EXPECT_TRUE(sameWords({}, {u"a"_qs}).empty());
}

TEST(SurerWords, AreTakenFromEitherHearing) {
    EXPECT_EQ(surer(u"Please/-0.2 that/-2 your pound key/-0.1 twice."_qs,
                    u"Please/-0.2 enter/-0.1 your pound gee/-1.5 twice."_qs),
              u"Please enter your pound key twice."_qs);
}

TEST(SurerWords, AreJudgedByTheWordAfterThemToo) {
    EXPECT_EQ(surer(u"the lower/-0.3 case/-1.2 is"_qs, u"the lowercase/-0.8 is"_qs),
              u"the lowercase is"_qs);
    EXPECT_EQ(surer(u"they as/-0.6 been"_qs, u"they has been/-0.9"_qs), u"they as been"_qs);
    EXPECT_EQ(surer(u"they as/-0.3 been/-1.2"_qs, u"they has/-0.5 been/-0.1"_qs),
              u"they has been"_qs);
}

TEST(SurerWords, StayAsTheyWereHeardFirstWhereTheOthersAreNotMoreProbable) {
    EXPECT_EQ(surer(u"one or two"_qs, u"one of two"_qs), u"one or two"_qs);
    EXPECT_EQ(surer(u"one or/-0.2 two"_qs, u"one of/-0.3 two"_qs), u"one or two"_qs);
    EXPECT_EQ(surer(u"one or/-0.3 two"_qs, u"one of/-0.2 two"_qs), u"one of two"_qs);
}

TEST(SurerWords, KeepMarksAndCapitalsWhereTheSameIsSaid) {
    EXPECT_EQ(surer(u"He came,/-3 and/-3 then he went."_qs, u"He came. And then he went."_qs),
              u"He came, and then he went."_qs);
}

TEST(SurerWords, BringTheMarksAndCapitalsThatGoWithThem) {
    // No full stop without the capital after it, and no capital without the full stop before it.
    EXPECT_EQ(surer(u"the pound/-1 gee/-2 and then hold"_qs, u"the pound key. And then hold"_qs),
              u"the pound key. And then hold"_qs);
    EXPECT_EQ(surer(u"the pound/-1 key/-2 and then hold"_qs, u"the pound. Gee/-9 and then hold"_qs),
              u"the pound key and then hold"_qs);
}

TEST(SurerWords, LoseNothingAtTheEnds) {
    EXPECT_EQ(surer(u"So/-1 it is"_qs, u"And so it is"_qs), u"And so it is"_qs);
    EXPECT_EQ(surer(u"it is so/-9"_qs, u"it is"_qs), u"it is so"_qs);
    EXPECT_EQ(surer(u"it is/-9 so"_qs, u"it so"_qs), u"it is so"_qs);
    EXPECT_EQ(surer(u"it is so"_qs, QString()), u"it is so"_qs) << "nothing was heard";
    EXPECT_EQ(surer(QString(), QString()), QString());
}

TEST(SurerWords, LoseNothingBetweenWordsThatAreTheSameButSaidAtOtherTimes) {
    EXPECT_EQ(surer(u"call/-0.1 eight,/-1.5 the/-0.1 press/-0.2 yard./-0.7 The/-0.1 first"_qs,
                    u"call./-0.6 8./-1.4 The/-0.2 Press/-0.3 Yard/-0.1 The/-0.1 first"_qs),
              u"call eight, the press yard. The first"_qs);
}

TEST(SurerWords, FillWhatTheFirstHearingOverlooked) {
    const QList<TimedWord> others = words(u"name. On/-1 the/-1 whole. To/-0.2 reset"_qs);
    EXPECT_EQ(textOf(surerWords(words(u"name."_qs) + words(u"To reset"_qs, 2), others)),
              u"name. On the whole. To reset"_qs);
    EXPECT_EQ(textOf(surerWords(words(u"To reset"_qs, 2), others)),
              u"name. On the whole. To reset"_qs);
    EXPECT_EQ(textOf(surerWords(words(u"name. On"_qs), others)),
              u"name. On the whole. To reset"_qs);
    EXPECT_EQ(surer(u"name. 1 2 3 To reset"_qs, u"name. On/-2 the whole. To reset"_qs),
              u"name. 1 2 3 To reset"_qs);
}

TEST(SurerWords, FillNothingWhereOnlyAMomentOrUnlikelyWordsAreHeard) {
    EXPECT_EQ(textOf(surerWords(words(u"name."_qs) + words(u"To reset"_qs, 5),
                                words(u"name. On/-1"_qs) + words(u"To reset"_qs, 5))),
              u"name. To reset"_qs)
        << "a pause";
    EXPECT_EQ(textOf(surerWords(words(u"name."_qs) + words(u"To reset"_qs, 2),
                                words(u"name. Thank/-2 you/-2 so/-1 To reset"_qs))),
              u"name. To reset"_qs)
        << "made up";
    EXPECT_EQ(textOf(surerWords(words(u"one two three name."_qs) + words(u"To reset"_qs, 3),
                                words(u"one two three name. On/-1"_qs) + words(u"To reset"_qs, 3))),
              u"one two three name. To reset"_qs)
        << "a moment";
}

/// Each word with the one before it, and the ends.
QStringList neighbours(const QList<TimedWord> &words) {
    const QStringList texts = (u". "_qs + textOf(words) + u" ."_qs).simplified().split(u' ');
    QStringList pairs;
    for (qsizetype i = 1; i < texts.size(); ++i)
        pairs.append(texts[i - 1] + u' ' + texts[i]);
    return pairs;
}

TEST(SurerWords, StandBesideEachOtherInOneHearingAndKeepWhatBothAgreeOn) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto upTo = [&](int last) { return std::uniform_int_distribution(0, last)(random); };
    const auto hearing = [&] {
        QString text;
        for (int i = 0, count = upTo(11); i < count; ++i)
            text += u"%1/%2 "_qs.arg(QChar(u'a' + upTo(3))).arg(-0.1 * upTo(20));
        return words(text, 0.1 * upTo(9));
    };
    for (int run = 0; run < 1000; ++run) {
        const QList<TimedWord> first = hearing();
        const QList<TimedWord> second = hearing();
        const QList<TimedWord> surer = surerWords(first, second);
        SCOPED_TRACE(
            qPrintable(textOf(first) + u" and "_qs + textOf(second) + u": "_qs + textOf(surer)));
        for (qsizetype i = 0; i < surer.size(); ++i) {
            ASSERT_LE(surer[i].start, surer[i].end);
            if (i) {
                ASSERT_LE(surer[i - 1].end, surer[i].start);
            }
        }
        const QStringList known = neighbours(first) + neighbours(second);
        for (const QString &pair : neighbours(surer))
            ASSERT_TRUE(known.contains(pair)) << qPrintable(pair);
        const auto same =
            sameWords(first.size(), second.size(), [&](qsizetype word, qsizetype other) {
                return first[word].text == second[other].text &&
                       std::abs(first[word].start - second[other].start) <= 0.5;
            });
        QStringList agreed;
        for (qsizetype i = 0; i < first.size(); ++i) {
            if (same[static_cast<std::size_t>(i)] >= 0)
                agreed.append(first[i].text);
        }
        const auto kept = sameWords(agreed, textOf(surer).split(u' '));
        ASSERT_EQ(std::count(kept.begin(), kept.end(), -1), 0) << qPrintable(agreed.join(u' '));
    }
}

TEST(Parts, EndAtPausesOnceThereIsEnoughToUnderstand) {
    const std::vector<VoiceSpan> parts =
        partsOf({{0.4, 1.4}, {2, 3.5}, {3.6, 5}, {6, 9}, {9.35, 9.8}}, 10.2);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_DOUBLE_EQ(parts[0].start, 0.3);
    EXPECT_DOUBLE_EQ(parts[0].end, 5.1);
    EXPECT_DOUBLE_EQ(parts[1].start, 5.9);
    EXPECT_DOUBLE_EQ(parts[1].end, 9.1);
    EXPECT_DOUBLE_EQ(parts[2].start, 9.25);
    EXPECT_DOUBLE_EQ(parts[2].end, 9.9);
}

TEST(Parts, StayWithinTheStretch) {
    const std::vector<VoiceSpan> parts = partsOf({{0.05, 5}}, 5.05);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts[0].start, 0);
    EXPECT_EQ(parts[0].end, 5.05);
}

TEST(Parts, AreOneWithoutAPauseAndNoneWithoutAVoice) {
    EXPECT_EQ(partsOf({{0.4, 5}, {5.2, 9}}, 9.5).size(), 1U);
    EXPECT_TRUE(partsOf({}, 9.5).empty());
}

/// A model that has heard a text in the whole of ten seconds, and hears others in its two halves.
class Halves {
public:
    QString hear(const QString &whole, const std::vector<VoiceSpan> &parts = {{0, 5}, {5, 10}},
                 const QStringList &phrases = {}) {
        heard.clear();
        return textOf(hearAgain(words(whole), parts, phrases, [&](VoiceSpan part) {
            if (heard.size() == abandonedAt)
                throw Abandoned();
            heard.push_back(part);
            return part.start == 0 ? words(u"Please enter your"_qs, 0)
                                   : words(u"Pound key, now."_qs, 5);
        }));
    }

    std::vector<VoiceSpan> heard;
    std::size_t abandonedAt = 100;
};

TEST(SecondHearing, HearsInPartsWhatItIsNotSureOf) {
    Halves halves;
    EXPECT_EQ(halves.hear(u"Please/-0.1 that/-1 your pound/-0.2 gee/-1"_qs),
              u"Please enter your Pound key, now."_qs);
    ASSERT_EQ(halves.heard.size(), 2U);
    EXPECT_EQ(halves.heard[0].end, 5);
    EXPECT_EQ(halves.heard[1].end, 10);
}

TEST(SecondHearing, HearsAgainWhatHasOnePart) {
    Halves halves;
    EXPECT_EQ(halves.hear(u"Please that/-1 your"_qs, {{0, 10}}), u"Please enter your"_qs);
    EXPECT_EQ(halves.heard.size(), 1U);
}

TEST(SecondHearing, HearsAgainWhereAPartHasNoWord) {
    Halves halves;
    EXPECT_EQ(halves.hear(u"Please enter your"_qs), u"Please enter your Pound key, now."_qs);
    EXPECT_EQ(halves.heard.size(), 2U);
    EXPECT_EQ(halves.hear({}), u"Please enter your Pound key, now."_qs);
}

TEST(SecondHearing, HearsOnceWhatItIsSureOf) {
    Halves halves;
    EXPECT_EQ(halves.hear(u"Please/-0.01 that/-0.6 yours/-0.01"_qs, {{0, 1}, {1, 2}}),
              u"Please that yours"_qs);
    EXPECT_EQ(halves.hear(u"Please that/-3 yours"_qs, {}), u"Please that yours"_qs) << "no voice";
    EXPECT_EQ(halves.hear({}, {}), QString());
    EXPECT_TRUE(halves.heard.empty());
}

TEST(SecondHearing, LeavesAStretchWithAPhraseAsItIs) {
    const QStringList phrases{u"Anirudh"_qs, u"Pound-Gee"_qs, u"that York"_qs};
    for (const QString &whole : {u"Please that/-3 anirudh, your"_qs, u"The poundgee/-3 your"_qs,
                                 u"Please/-3 “that York” your"_qs}) {
        Halves halves;
        EXPECT_EQ(halves.hear(whole, {{0, 5}, {5, 10}}, phrases), textOf(words(whole)));
        EXPECT_TRUE(halves.heard.empty());
    }
    Halves halves;
    halves.hear(u"Please that/-3 your yorkshire"_qs, {{0, 5}, {5, 10}}, phrases);
    EXPECT_EQ(halves.heard.size(), 2U);
}

TEST(SecondHearing, IsAbandonedWhereverItIs) {
    for (const std::size_t count : {0U, 1U}) {
        Halves halves;
        halves.abandonedAt = count;
        EXPECT_THROW(halves.hear(u"Please that/-3 your"_qs), Abandoned);
    }
}

} // namespace
} // namespace lorvane
