#include "Speech/Phonetics.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

double alike(const QString &a, const QString &b) { return likeness(soundsOf(a), soundsOf(b)); }

TEST(Phonetics, FindsWhatIsSpeltInAnotherWayTheSame) {
    EXPECT_EQ(alike(u"GitHub"_qs, u"git hub"_qs), 1);
    EXPECT_EQ(alike(u"Jean-Luc"_qs, u"jean luc"_qs), 1);
    EXPECT_EQ(alike(u"O’Brien"_qs, u"OBrien"_qs), 1);
    EXPECT_EQ(alike(u"Café"_qs, u"cafe"_qs), 1);
    EXPECT_EQ(alike(u"Philip"_qs, u"Filip"_qs), 1);
    EXPECT_EQ(alike(u"Maintz"_qs, u"Mainz"_qs), 1);
}

TEST(Phonetics, FindsANameLikeWhatWasHeardInItsPlace) {
    EXPECT_GT(alike(u"Kowalczyk"_qs, u"Kovalchik"_qs), 0.8);
    EXPECT_GT(alike(u"Anirudh"_qs, u"any rude"_qs), 0.8);
    EXPECT_GT(alike(u"Wittgenstein"_qs, u"Vitkin Stein"_qs), 0.7);
}

TEST(Phonetics, FindsOtherWordsUnlike) {
    EXPECT_LT(alike(u"Kowalczyk"_qs, u"meeting"_qs), 0.5);
    EXPECT_LT(alike(u"Kubernetes"_qs, u"yesterday"_qs), 0.5);
    EXPECT_EQ(alike(u""_qs, u"word"_qs), 0);
    EXPECT_EQ(alike(u""_qs, u"..."_qs), 0);
}

TEST(Phonetics, TakesOtherScriptsAsTheyAre) {
    EXPECT_EQ(alike(u"Привет"_qs, u"привет"_qs), 1);
    EXPECT_LT(alike(u"Привет"_qs, u"спасибо"_qs), 0.5);
    EXPECT_EQ(alike(u"日本"_qs, u"日本"_qs), 1);
}

} // namespace
} // namespace lorvane
