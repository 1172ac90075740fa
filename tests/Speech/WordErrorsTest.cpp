#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

WordErrors errors(const QString &said, const QString &heard) {
    return wordErrors(spokenWords(said), spokenWords(heard));
}

TEST(WordErrors, AreNoneForTheSameWordsWrittenDifferently) {
    EXPECT_EQ(errors(u"Press two, then the 15th of 1455."_qs,
                     u"press 2 then the fifteenth of fourteen fifty-five"_qs)
                  .errors(),
              0);
    EXPECT_EQ(errors(u"I don't know, Mr. Smith"_qs, u"I don’t know mister smith"_qs).errors(), 0);
}

TEST(WordErrors, CountTheFewestChanges) {
    const WordErrors found = errors(u"one two three four five"_qs, u"one too three five six"_qs);
    EXPECT_EQ(found.wordCount, 5);
    EXPECT_EQ(found.errors(), 3);
    EXPECT_EQ(errors(u""_qs, u"you"_qs).insertions, 1);
    EXPECT_EQ(errors(u"a b c"_qs, u""_qs).deletions, 3);
    EXPECT_DOUBLE_EQ(errors(u"a b c d"_qs, u"a b x d"_qs).rate(), 0.25);
}

} // namespace
} // namespace lorvane
