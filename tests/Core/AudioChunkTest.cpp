#include "Core/AudioChunk.h"

#include "Core/Printing.h"

#include <limits>

namespace lorvane {
namespace {

using Plan = QList<AudioChunk>;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(AudioChunkPlan, CutsAMinuteAndABitIntoThree) {
    EXPECT_EQ(AudioChunk::plan(61.5),
              (Plan{{0, 0, 31, 0, 30}, {1, 29, 61, 30, 60}, {2, 59, 61.5, 60, 61.5}}));
}

TEST(AudioChunkPlan, CutsThreeQuartersOfAMinuteIntoTwo) {
    EXPECT_EQ(AudioChunk::plan(45), (Plan{{0, 0, 31, 0, 30}, {1, 29, 45, 30, 45}}));
}

TEST(AudioChunkPlan, MakesTwoChunksOfExactlyAMinute) {
    EXPECT_EQ(AudioChunk::plan(60), (Plan{{0, 0, 31, 0, 30}, {1, 29, 60, 30, 60}}));
}

TEST(AudioChunkPlan, CoversAShortRecordingByOneChunk) {
    EXPECT_EQ(AudioChunk::plan(30), (Plan{{0, 0, 30, 0, 30}}));
    EXPECT_EQ(AudioChunk::plan(0.5), (Plan{{0, 0, 0.5, 0, 0.5}}));
}

TEST(AudioChunkPlan, LetsChunksAbutWithoutOverlap) {
    EXPECT_EQ(AudioChunk::plan(25, 10, 0),
              (Plan{{0, 0, 10, 0, 10}, {1, 10, 20, 10, 20}, {2, 20, 25, 20, 25}}));
}

TEST(AudioChunkPlan, KeepsAWideOverlapInsideTheRecording) {
    EXPECT_EQ(AudioChunk::plan(20, 10, 100), (Plan{{0, 0, 20, 0, 10}, {1, 0, 20, 10, 20}}));
}

TEST(AudioChunkPlan, PlansNothingForAnImpossibleDuration) {
    for (const double duration : {0.0, -0.0, -1.0, infinity, -infinity, nan})
        EXPECT_EQ(AudioChunk::plan(duration), Plan()) << duration;
}

TEST(AudioChunkPlan, PlansNothingForAnImpossibleCoreOrOverlap) {
    for (const double core : {0.0, -30.0, -infinity, nan})
        EXPECT_EQ(AudioChunk::plan(45, core), Plan()) << core;
    for (const double overlap : {-1.0, -infinity, nan})
        EXPECT_EQ(AudioChunk::plan(45, 30, overlap), Plan()) << overlap;
}

TEST(AudioChunkPlan, PlansNothingForMorePiecesThanCanBeCounted) {
    EXPECT_EQ(AudioChunk::plan(1e300), Plan());
    EXPECT_EQ(AudioChunk::plan(1, 1e-300), Plan());
}

TEST(AudioChunks, AreEqualWhenAllFieldsAre) {
    const AudioChunk chunk{1, 2, 3, 4, 5};
    EXPECT_EQ(chunk, (AudioChunk{1, 2, 3, 4, 5}));
    EXPECT_NE(chunk, (AudioChunk{0, 2, 3, 4, 5}));
    EXPECT_NE(chunk, (AudioChunk{1, 0, 3, 4, 5}));
    EXPECT_NE(chunk, (AudioChunk{1, 2, 0, 4, 5}));
    EXPECT_NE(chunk, (AudioChunk{1, 2, 3, 0, 5}));
    EXPECT_NE(chunk, (AudioChunk{1, 2, 3, 4, 0}));
}

} // namespace
} // namespace lorvane
