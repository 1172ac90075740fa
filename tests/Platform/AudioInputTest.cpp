#include "SoundFixture.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocationCount = 0;

} // namespace

// Counts what each thread of this program allocates, to see which doesn't.
void *operator new(std::size_t size) {
    ++allocationCount;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

long lorvane::allocationsOfThisThread() { return allocationCount; }

namespace lorvane {
namespace {

/// What holds for every microphone.
template <class Driver>
class AudioInputTest : public testing::Test {
protected:
    bool hear(const Ear &ear, qint64 frames) {
        return driver.waitUntil([&] {
            if (ear.frames() < frames)
                driver.hear();
            return ear.frames() >= frames;
        });
    }

    Driver driver;
    AudioInput &input = driver.input;
};

using Drivers = testing::Types<Fake, Pulse>;
TYPED_TEST_SUITE(AudioInputTest, Drivers);

TYPED_TEST(AudioInputTest, TheFormatIsTheMicrophones) {
    EXPECT_EQ(this->driver.await(this->input.format()), mono);
}

TYPED_TEST(AudioInputTest, BuffersComeUntilItIsStoppedAndNoneAfter) {
    Ear ear;
    this->driver.await(this->input.start(mono, ear.tap(), nobody()));
    EXPECT_TRUE(this->hear(ear, 3 * 2048));
    this->input.stop();
    const qint64 frames = ear.frames();
    this->driver.hear();
    this->driver.waitFor(60ms);
    EXPECT_EQ(ear.frames(), frames);
}

TYPED_TEST(AudioInputTest, AStopMoreOrLessDoesNoHarm) {
    this->input.stop();
    Ear ear;
    this->driver.await(this->input.start(mono, ear.tap(), nobody()));
    this->input.stop();
    this->input.stop();
}

TYPED_TEST(AudioInputTest, ItStartsAgainAfterAStop) {
    for (int i = 0; i < 5; ++i) {
        Ear ear;
        this->driver.await(this->input.start(mono, ear.tap(), nobody()));
        EXPECT_TRUE(this->hear(ear, 2048));
        this->input.stop();
    }
}

TYPED_TEST(AudioInputTest, AStartReplacesTheOneBefore) {
    Ear first;
    Ear second;
    this->driver.await(this->input.start(mono, first.tap(), nobody()));
    this->driver.await(this->input.start(mono, second.tap(), nobody()));
    const qint64 frames = first.frames();
    EXPECT_TRUE(this->hear(second, 2048));
    EXPECT_EQ(first.frames(), frames);
    this->input.stop();
}

TYPED_TEST(AudioInputTest, AFinishStopsItToo) {
    Ear ear;
    this->driver.await(this->input.start(mono, ear.tap(), nobody()));
    EXPECT_TRUE(this->hear(ear, 2048));
    this->driver.await(this->input.finish());
    const qint64 frames = ear.frames();
    this->driver.hear();
    this->driver.waitFor(60ms);
    EXPECT_EQ(ear.frames(), frames);
    this->driver.await(this->input.finish());
}

TYPED_TEST(AudioInputTest, AStopEndsAStartThatWaits) {
    this->driver.beSlow();
    Ear ear;
    const auto starting = Task<>::run(this->input.start(mono, ear.tap(), nobody()));
    EXPECT_FALSE(starting.isDone());
    this->input.stop();
    EXPECT_TRUE(this->driver.waitUntil([&] { return starting.isDone(); }));
    this->driver.goOn();
    this->driver.hear();
    this->driver.waitFor(60ms);
    EXPECT_EQ(ear.frames(), 0);
}

TYPED_TEST(AudioInputTest, AStopEndsAFinishThatWaitsAndAnotherStartIsNotConcerned) {
    Ear first;
    Ear second;
    this->driver.await(this->input.start(mono, first.tap(), nobody()));
    EXPECT_TRUE(this->hear(first, 2048));
    this->driver.beSlow();
    const auto finishing = Task<>::run(this->input.finish());
    EXPECT_FALSE(finishing.isDone());
    this->input.stop();
    const qint64 frames = first.frames();
    const auto starting = Task<>::run(this->input.start(mono, second.tap(), nobody()));
    EXPECT_TRUE(this->driver.waitUntil([&] { return finishing.isDone(); }));
    this->driver.goOn();
    EXPECT_TRUE(this->driver.waitUntil([&] { return starting.isDone(); }));
    EXPECT_TRUE(this->hear(second, 2048));
    EXPECT_EQ(first.frames(), frames);
    this->input.stop();
}

TYPED_TEST(AudioInputTest, AnEndThatComesDuringAFinishIsNotTold) {
    Ear ear;
    bool isTold = false;
    this->driver.await(this->input.start(mono, ear.tap(), [&](const QString &) { isTold = true; }));
    EXPECT_TRUE(this->hear(ear, 2048));
    this->driver.beSlow();
    const auto finishing = Task<>::run(this->input.finish());
    this->driver.loseMicrophone();
    this->driver.goOn();
    EXPECT_TRUE(this->driver.waitUntil([&] { return finishing.isDone(); }));
    this->driver.waitFor(60ms);
    EXPECT_FALSE(isTold);
}

TYPED_TEST(AudioInputTest, ALostMicrophoneIsToldOnceOnTheMainThread) {
    Ear ear;
    int count = 0;
    QString reason;
    const auto mainThread = std::this_thread::get_id();
    this->driver.await(this->input.start(mono, ear.tap(), [&](const QString &text) {
        ++count;
        reason = text;
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
    }));
    EXPECT_TRUE(this->hear(ear, 2048));
    this->driver.loseMicrophone();
    EXPECT_TRUE(this->driver.waitUntil([&] { return count > 0; }));
    const qint64 frames = ear.frames();
    this->driver.waitFor(60ms);
    this->input.stop();
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_EQ(ear.frames(), frames);
}

TYPED_TEST(AudioInputTest, AnEndThatComesAfterTheStopIsNotTold) {
    Ear ear;
    bool isTold = false;
    this->driver.await(this->input.start(mono, ear.tap(), [&](const QString &) { isTold = true; }));
    EXPECT_TRUE(this->hear(ear, 2048));
    this->input.stop();
    this->driver.loseMicrophone();
    this->driver.waitFor(60ms);
    EXPECT_FALSE(isTold);
}

TYPED_TEST(AudioInputTest, WithoutAMicrophoneThereIsNoFormatAndAStartSaysWhy) {
    this->driver.haveNoMicrophone();
    EXPECT_FALSE(this->driver.await(this->input.format()).isUsable());
    Ear ear;
    EXPECT_EQ(errorOf([&] { this->driver.await(this->input.start(mono, ear.tap(), nobody())); }),
              QStringLiteral("No microphone input is available. "
                             "Check your audio input in System Settings."));
}

} // namespace
} // namespace lorvane
