#include "Core/TranscriptIntegrity.h"

#include "Core/Printing.h"

namespace lorvane {
namespace {

bool isSeverelyShorter(int candidateWords, int referenceWords) {
    return TranscriptIntegrity::isSeverelyShorter(QStringLiteral("word ").repeated(candidateWords),
                                                  QStringLiteral("word ").repeated(referenceWords));
}

TEST(TranscriptIntegrity, NeverJudgesAReferenceBelowTwelveWords) {
    EXPECT_FALSE(isSeverelyShorter(0, 11));
    EXPECT_FALSE(isSeverelyShorter(0, 0));
}

TEST(TranscriptIntegrity, RefusesFewerThanSixtyPercentOfTwelveWords) {
    EXPECT_TRUE(isSeverelyShorter(7, 12));
    EXPECT_FALSE(isSeverelyShorter(8, 12));
    EXPECT_TRUE(isSeverelyShorter(0, 12));
}

TEST(TranscriptIntegrity, AcceptsExactlySixtyPercent) {
    EXPECT_TRUE(isSeverelyShorter(11, 20));
    EXPECT_FALSE(isSeverelyShorter(12, 20));
    EXPECT_FALSE(isSeverelyShorter(60, 100));
    EXPECT_TRUE(isSeverelyShorter(59, 100));
}

TEST(TranscriptIntegrity, AcceptsALongerCandidate) { EXPECT_FALSE(isSeverelyShorter(21, 20)); }

TEST(TranscriptIntegrity, CountsRunsOfNonWhitespace) {
    const QString reference = QStringLiteral("a\u00A0b\u3000c\n\nd e f g h i j k l");
    EXPECT_TRUE(TranscriptIntegrity::isSeverelyShorter(u"one-two,three...four five", reference));
    EXPECT_FALSE(TranscriptIntegrity::isSeverelyShorter(u"1 2 3\t4\u20285 6 7 8", reference));
}

} // namespace
} // namespace lorvane
