#include "Speech/OwnWords.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace lorvane {
namespace {

QStringList kept(const QList<double> &starts, double duration, const SpeechContext &context) {
    QList<TimedWord> words;
    for (const double start : starts)
        words.append({QString::number(start), start, start + 0.3});
    QStringList texts;
    for (const TimedWord &word : ownWords(words, duration, context))
        texts.append(word.text);
    return texts;
}

TEST(OwnWords, WithoutContextAllWordsAreKept) {
    EXPECT_EQ(kept({0, 15, 30}, 30, {}), QStringList({u"0"_s, u"15"_s, u"30"_s}));
}

TEST(OwnWords, WordsOfTheNeighboursAreLeftToThem) {
    EXPECT_EQ(kept({0, 0.5, 1.5, 30, 31.5, 31.9}, 32, {1, 1, {}}),
              QStringList({u"1.5"_s, u"30"_s}));
}

TEST(OwnWords, BothPiecesKeepAWordThatStartsAtTheBorder) {
    // The border stands at 30 s of the recording: at 30 of 31 in one piece, at 1 of 32 in the next.
    EXPECT_EQ(kept({29.9, 30.1}, 31, {0, 1, {}}), QStringList({u"29.9"_s, u"30.1"_s}));
    EXPECT_EQ(kept({0.9, 1.1}, 32, {1, 1, {}}), QStringList({u"0.9"_s, u"1.1"_s}));
}

TEST(OwnWords, AWordThatOnePieceLeavesToTheNextIsKeptThereThreeTenthsEarlier) {
    EXPECT_EQ(kept({30.16}, 31, {0, 1, {}}), QStringList());
    EXPECT_EQ(kept({0.86}, 32, {1, 1, {}}), QStringList({u"0.86"_s}));
}

/// What is kept of a piece that shares its first second, and the texts of `written` with it.
QString keptAfter(const QList<TranscribedWord> &written, const QList<TimedWord> &words) {
    QStringList texts;
    for (const TimedWord &word : ownWords(words, 10, {1, 0, written}))
        texts.append(word.text);
    return texts.join(u' ');
}

TEST(OwnWords, WhatWasWrittenAlreadyIsLeftOut) {
    const QList<TimedWord> words{{u"of"_s, 0.7, 0.8}, {u"the"_s, 0.9, 1.0}, {u"place"_s, 1.1, 1.5}};
    EXPECT_EQ(keptAfter({}, words), u"the place"_s);
    EXPECT_EQ(keptAfter({{u"The"_s, 1.08, 0.05}}, words), u"place"_s) << "hardly at one time";
    EXPECT_EQ(keptAfter({{u"the"_s, 0.9, 0.1}, {u"plaice."_s, 1.1, 0.4}}, words), u"place"_s)
        << "what follows was heard as another word";
    EXPECT_EQ(keptAfter({{u"the"_s, 0.9, 0.1}, {u"Place,"_s, 1.0, 0.4}}, words), QString());
}

TEST(OwnWords, TheSameWordAtAnotherTimeIsAnotherWord) {
    const QList<TimedWord> words{{u"no"_s, 1.1, 1.2}, {u"no"_s, 1.5, 1.6}};
    EXPECT_EQ(keptAfter({{u"no"_s, 0.7, 0.1}}, words), u"no no"_s);
    EXPECT_EQ(keptAfter({{u"no"_s, 1.1, 0.1}}, words), u"no"_s);
}

} // namespace
} // namespace lorvane
