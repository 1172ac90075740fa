#include "SpeechTranscriberFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using SpeechTranscriberLiveTest = SpeechTranscriberFixture;

TEST_F(SpeechTranscriberLiveTest, EachSnapshotReplacesTheLiveText) {
    start();
    live()->give(FakeSpeech::result(u"Hello word"_s, false));
    live()->give(FakeSpeech::result(u"Hello world again"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"Hello world again"_s);
}

TEST_F(SpeechTranscriberLiveTest, RotationAfterThirtySecondsKeepsTheText) {
    start();
    const auto first = live();
    first->give(FakeSpeech::result(u"One two"_s, false));
    clock().advance(30s - 1ns);
    EXPECT_EQ(live(), first);
    clock().advance(1ns);
    ASSERT_NE(live(), first);
    EXPECT_TRUE(first->isCancelled);
    live()->give(FakeSpeech::result(u"three"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One two three"_s);
    first->give(FakeSpeech::result(u"stale"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One two three"_s);
}

TEST_F(SpeechTranscriberLiveTest, RotatedRequestGetsTheBuffersFromThenOn) {
    start();
    const auto first = live();
    speak(100ms);
    const auto before = first->buffers().size();
    clock().advance(30s);
    speak(100ms);
    EXPECT_EQ(first->buffers().size(), before);
    EXPECT_EQ(live()->buffers().size(), before);
}

TEST_F(SpeechTranscriberLiveTest, EmptyFirstRequestLeavesNoLeadingSpace) {
    start();
    clock().advance(30s);
    live()->give(FakeSpeech::result(u"late start"_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"late start"_s);
}

TEST_F(SpeechTranscriberLiveTest, RequestThatEndsByItselfIsReplacedAfterThreeTenths) {
    start();
    const auto first = live();
    first->give(FakeSpeech::result(u"One."_s, true));
    first->give(FakeSpeech::result(u"after its end"_s, false));
    clock().advance(300ms - 1ns);
    EXPECT_EQ(live(), first);
    EXPECT_EQ(transcriber.transcript(), u"One."_s);
    clock().advance(1ns);
    EXPECT_NE(live(), first);
    live()->give(FakeSpeech::result(u"Two."_s, false));
    clock().runUntilIdle();
    EXPECT_EQ(transcriber.transcript(), u"One. Two."_s);
    clock().advance(29s);
    EXPECT_EQ(ports.speech.liveRequests().size(), 2U) << "the first rotation was still pending";
}

TEST_F(SpeechTranscriberLiveTest, LiveErrorIsJustAnotherEnd) {
    start();
    live()->giveAndFail(FakeSpeech::result(u"One"_s, false), u"Broken."_s);
    clock().advance(300ms);
    EXPECT_EQ(ports.speech.liveRequests().size(), 2U);
    EXPECT_EQ(transcriber.errorMessage(), QString());
    EXPECT_EQ(transcriber.transcript(), u"One"_s);
}

TEST_F(SpeechTranscriberLiveTest, NothingRotatesAfterTheStop) {
    start();
    live()->give(FakeSpeech::result(u"One"_s, true));
    speak(1s);
    stop();
    clock().advance(60s);
    EXPECT_EQ(ports.speech.liveRequests().size(), 1U);
    EXPECT_TRUE(live()->isCancelled);
}

} // namespace
} // namespace lorvane
