#include "Speech/LiveRequest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <numeric>

namespace {
thread_local int allocations = 0;
}

// Counts what a thread allocates. The address sanitizer has operators of its own.
#ifndef __SANITIZE_ADDRESS__
void *operator new(std::size_t size) {
    ++allocations;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace lorvane {
namespace {

TEST(LiveRequest, KeepsTheMeanOfTheChannels) {
    LiveRequest request({48000, 2});
    const float frames[] = {0.25F, 0.75F, -1, 1};
    request.append({frames, 2, 2});
    const std::span<const float> samples = request.from(0);
    ASSERT_EQ(samples.size(), 2U);
    EXPECT_FLOAT_EQ(samples[0], 0.5F);
    EXPECT_FLOAT_EQ(samples[1], 0);
}

TEST(LiveRequest, GivesWhatCameAfterAPosition) {
    LiveRequest request({48000, 1});
    const float samples[] = {1, 2, 3};
    request.append({samples, 2, 1});
    request.append({samples + 2, 1, 1});
    ASSERT_EQ(request.from(1).size(), 2U);
    EXPECT_EQ(request.from(1)[1], 3);
    EXPECT_TRUE(request.from(3).empty());
}

TEST(LiveRequest, DropsWhatFindsNoRoom) {
    LiveRequest request({100, 1});
    std::vector<float> second(100);
    std::iota(second.begin(), second.end(), 0.F);
    for (int i = 0; i < 60; ++i)
        request.append({second.data(), 99, 1});
    EXPECT_TRUE(request.isFull());
    EXPECT_EQ(request.from(0).size(), static_cast<std::size_t>(100 * LiveRequest::longest));
}

TEST(LiveRequest, AllocatesNothingWhileItIsFed) {
    LiveRequest request({48000, 2});
    std::vector<float> frames(4096);
    const int before = allocations;
    for (int i = 0; i < 1000; ++i)
        request.append({frames.data(), 2048, 2});
    EXPECT_EQ(allocations, before);
}

TEST(LiveRequest, IgnoresBuffersWithoutSound) {
    LiveRequest request({48000, 1});
    request.append({nullptr, 0, 1});
    request.append({nullptr, 10, 0});
    EXPECT_TRUE(request.from(0).empty());
}

} // namespace
} // namespace lorvane
