// What the adapter promises beyond its port.

#include "SoundFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <random>

namespace lorvane {
namespace {

using testing::Each;

TEST_F(PulseAudioInputTest, BuffersHave2048FramesButForTheLastOne) {
    Ear ear;
    await(input.start(mono, ear.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= qint64(10) * 2048; }));
    input.stop();
    auto sizes = ear.sizes();
    EXPECT_LE(sizes.back(), 2048);
    sizes.pop_back();
    EXPECT_THAT(sizes, Each(2048));
}

TEST_F(PulseAudioInputTest, TheAudioThreadDoesNotAllocate) {
    Ear ear;
    await(input.start(mono, ear.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return ear.frames() >= qint64(20) * 2048; }));
    input.stop();
    auto allocations = ear.allocations();
    allocations.pop_back(); // the last one comes from the main thread
    EXPECT_THAT(allocations, Each(allocations.front()));
    EXPECT_NE(ear.threads().front(), std::this_thread::get_id());
}

TEST_F(PulseAudioInputTest, StartIsQuickAndSoIsTheFirstBuffer) {
    await(input.format());
    std::vector<double> formats;
    std::vector<double> starts;
    std::vector<double> firsts;
    for (int i = 0; i < 20; ++i) {
        Ear ear;
        const auto begin = SteadyClock::now();
        formats.push_back(millisecondsOf([&] { await(input.format()); }));
        await(input.start(mono, ear.tap(), nobody()));
        starts.push_back(millisecondsSince(begin));
        ASSERT_TRUE(waitUntil([&] { return ear.frames() > 0; }));
        firsts.push_back(
            std::chrono::duration<double, std::milli>(ear.arrivals()[0].time - begin).count());
        input.stop();
    }
    std::sort(formats.begin(), formats.end());
    std::sort(starts.begin(), starts.end());
    std::sort(firsts.begin(), firsts.end());
    printf(
        "start: median %.1f ms, longest %.1f ms; first buffer: median %.1f ms, longest %.1f ms\n",
        starts[10], starts.back(), firsts[10], firsts.back());
    EXPECT_LT(formats[10], 1);
    EXPECT_LT(starts.back(), 500);
}

TEST_F(PulseAudioInputTest, NothingHeardBeforeAFinishIsLost) {
    const Noise noise(sound);
    PulseAudioInput other(clock); // hears the same and goes on
    Ear reference;
    await(other.start(mono, reference.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return reference.frames() >= 48000; }));

    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    struct Stop {
        SteadyClock::time_point time;
        std::vector<float> last;
    };
    std::vector<Stop> stops;
    std::vector<double> calls;
    std::vector<double> durations;
    for (int i = 0; i < 40; ++i) {
        Ear ear;
        await(input.start(mono, ear.tap(), nobody()));
        const auto length =
            std::chrono::milliseconds(std::uniform_int_distribution<int>(120, 220)(random));
        waitFor(length);
        const auto time = SteadyClock::now();
        std::optional<Task<>> finishing;
        const auto finish = [&] { finishing = Task<>::run(input.finish()); };
        calls.push_back(millisecondsOf(finish));
        ASSERT_TRUE(waitUntil([&] { return finishing->isDone(); }));
        durations.push_back(millisecondsSince(time));
        const auto heard = ear.heard();
        ASSERT_GT(heard.size(), 256U);
        // A player that is held up leaves silence, which is the same everywhere.
        if (std::find(heard.end() - 256, heard.end(), 0.0F) != heard.end())
            continue;
        stops.push_back({time, {heard.end() - 256, heard.end()}});
    }
    ASSERT_GT(stops.size(), 20U);
    waitFor(200ms);
    other.stop();

    // The earliest that a frame was ever there tells when it was heard.
    const auto arrivals = reference.arrivals();
    const auto origin = arrivals.front().time;
    const auto frameAt = [&](SteadyClock::time_point time) {
        return std::chrono::duration<double>(time - origin).count() * mono.sampleRate;
    };
    double lead = -1e9;
    for (const Ear::Arrival &arrival : arrivals)
        lead = std::max(lead, double(arrival.frames) - frameAt(arrival.time));

    const auto all = reference.heard();
    std::vector<double> losses;
    for (const Stop &stop : stops) {
        const auto place = std::search(all.begin(), all.end(), stop.last.begin(), stop.last.end());
        ASSERT_NE(place, all.end());
        const auto end = double(place - all.begin()) + double(stop.last.size());
        losses.push_back((frameAt(stop.time) + lead - end) / mono.sampleRate * 1000);
    }
    std::sort(losses.begin(), losses.end());
    std::sort(calls.begin(), calls.end());
    std::sort(durations.begin(), durations.end());
    printf(
        "lost at the end: median %.1f ms, most %.1f ms; the finish took: median %.1f ms, longest "
        "%.1f ms, of which the main thread was held up for %.2f ms, at most %.2f ms\n",
        losses[losses.size() / 2], losses.back(), durations[20], durations.back(), calls[20],
        calls.back());
    // A busy machine may hold up the server, or this test, for a moment.
    EXPECT_LT(losses[losses.size() / 2], 1);
    EXPECT_LT(losses.back(), 40);
    EXPECT_LT(durations.back(), 400);
    EXPECT_LT(calls[20], 5);
}

TEST_F(PulseAudioInputTest, NoFrameIsLostOrDoubledBetweenBuffers) {
    const Noise noise(sound);
    PulseAudioInput other(clock);
    Ear first;
    Ear second;
    await(input.start(mono, first.tap(), nobody()));
    await(other.start(mono, second.tap(), nobody()));
    ASSERT_TRUE(waitUntil([&] { return second.frames() >= qint64(3) * 48000; }));
    input.stop();
    other.stop();
    const auto a = first.heard();
    const auto b = second.heard();
    // `a` began earlier and ended earlier.
    const auto place = std::search(a.begin(), a.end(), b.begin() + 4800, b.begin() + 4800 + 256);
    ASSERT_NE(place, a.end());
    EXPECT_GT(a.end() - place, 2 * 48000);
    EXPECT_TRUE(std::equal(place, a.end(), b.begin() + 4800));
}

} // namespace
} // namespace lorvane
