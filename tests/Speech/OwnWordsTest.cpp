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
    EXPECT_EQ(kept({0, 0.5, 1.5, 30, 31.5, 31.9}, 32, {1, 1}), QStringList({u"1.5"_s, u"30"_s}));
}

TEST(OwnWords, BothPiecesKeepAWordThatStartsAtTheBorder) {
    // The border stands at 30 s of the recording: at 30 of 31 in one piece, at 1 of 32 in the next.
    EXPECT_EQ(kept({29.9, 30.1}, 31, {0, 1}), QStringList({u"29.9"_s, u"30.1"_s}));
    EXPECT_EQ(kept({0.9, 1.1}, 32, {1, 1}), QStringList({u"0.9"_s, u"1.1"_s}));
}

} // namespace
} // namespace lorvane
