// Dictations in any order of events, against a model of what the transcriber is to do.

#include "Core/AudioChunk.h"
#include "Core/Random.h"
#include "Core/TranscriptIntegrity.h"
#include "Fakes/FakePorts.h"
#include "Services/SpeechTranscriber.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include <map>
#include <set>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

const QString staleWord = u"stale"_s;

class Simulation {
public:
    Simulation() {
        ports.audioInput.nativeFormat = usual;
        transcriber = std::make_unique<SpeechTranscriber>(ports);
    }

    void step() {
        const int choice = random.number(0, 99);
        if (choice < 10)
            callStart();
        else if (choice < 18)
            callStop();
        else if (choice < 20)
            cancel();
        else if (choice < 21)
            cancelACaller();
        else if (choice < 36)
            deliver();
        else if (choice < 48)
            tellLive();
        else if (choice < 58)
            tellFile();
        else if (choice < 66)
            tellAnalysis();
        else if (choice < 80)
            clock.runOnePosted();
        else if (choice < 90)
            answerOfTheSoundServer();
        else if (choice < 96)
            clock.advance(random.one(
                std::vector<std::chrono::nanoseconds>{1ms, 300ms, 1s, 30s, 119s, 120s, 400s}));
        else
            changeTheWorld();
        check();
    }

    /// Lets everything come to its end.
    void drain() {
        clock.holdsBackground = false;
        ports.audioInput.isSlow = false;
        ports.audioInput.goOn();
        // The second prompt shows only once the first is answered.
        ports.permissions.answerMicrophone(true);
        clock.runUntilIdle();
        ports.permissions.answerSpeech(true);
        clock.runUntilIdle();
        cancel();
        clock.advance(1h);
        for (const auto &call : calls)
            ASSERT_EQ(call->resumptions, 1);
        ASSERT_EQ(clock.timerCount(), 0);
        checkKept();
        for (const QString &gone : confirmedFolders)
            ASSERT_FALSE(QFileInfo::exists(gone));
    }

    QString summary() const {
        return u"%1 sessions, %2 confirmed, %3 kept, %4 discarded, %5 calls"_s.arg(session)
            .arg(confirmedCount())
            .arg(kept)
            .arg(discarded)
            .arg(calls.size());
    }
    qsizetype confirmedCount() const { return confirmedFolders.size(); }

private:
    static constexpr AudioFormat usual{100, 1}; // a low rate, so that minutes cost little

    struct Call {
        int instance;
        int session;
        int resumptions = 0;
        Task<> task;
    };
    enum class Ender { isFinal, failed };

    // Starting

    void callStart() {
        const bool isBusy = isStarting || isOpen || isFinishing;
        auto &call = newCall();
        if (!isBusy) {
            call.session = ++session;
            isStarting = isAlive = true;
            isCancelled = false;
            hasCaptureFailed = false;
            folder.clear();
        }
        const QString locale = u"en-%1"_s.arg(call.session);
        call.task = Task<>::run(runStart(call, locale, isBusy));
        if (isBusy) {
            ASSERT_EQ(call.resumptions, 1) << "a second session wasn't refused";
        }
    }

    Async<> runStart(Call &call, QString locale, bool isBusy) {
        std::optional<TranscriptionError::Kind> kind;
        bool hasThrown = false;
        try {
            const QStringList noHints;
            SpeechTranscriber &started = *transcriber;
            co_await started.start(locale, noHints);
        } catch (const TranscriptionError &error) {
            kind = error.kind;
            hasThrown = true;
        } catch (const LocalizedError &) {
            hasThrown = true;
        }
        ++call.resumptions;
        const bool isRefused = kind == TranscriptionError::Kind::alreadyRecording;
        EXPECT_EQ(isRefused, isBusy);
        if (isBusy || call.instance != instance)
            co_return;
        isStarting = false;
        if (!isAlive || call.session != session) {
            EXPECT_EQ(kind, TranscriptionError::Kind::cancelled);
        } else if (hasThrown) {
            isAlive = false;
        } else {
            isOpen = true;
            EXPECT_TRUE(transcriber->isRecording());
            folder = newFolder();
        }
    }

    QString newFolder() {
        for (const QString &found : ports.recordingFolders()) {
            if (folders.insert(found).second)
                return found;
        }
        ADD_FAILURE() << "a recording without a folder";
        return {};
    }

    // Stopping

    void callStop() {
        auto &call = newCall();
        const bool isJoining = isFinishing;
        const bool isImmediate = !isFinishing && (isStarting || !isOpen);
        if (!isJoining && isStarting) {
            isAlive = isOpen = false;
            isCancelled = true;
        } else if (!isJoining && isOpen) {
            isOpen = false;
            isFinishing = true;
            liveReference = transcriber->transcript();
            enders.clear();
            wholeParts.clear();
            wholeText.reset();
            isAnalysisOver = false;
        }
        call.task = Task<>::run(runStop(call));
        ASSERT_EQ(call.resumptions, isImmediate ? 1 : 0);
    }

    Async<> runStop(Call &call) {
        SpeechTranscriber &stopped = *transcriber;
        const QString text = co_await stopped.stop();
        ++call.resumptions;
        if (call.instance != instance || call.session != session || !isFinishing)
            co_return;
        isFinishing = false;
        judge(text);
    }

    /// What has become of the audio of a recording that was finished.
    void judge(const QString &text) {
        const QString url = folder + u"/recording.caf"_s;
        EXPECT_EQ(text, transcriber->transcript());
        const bool isGood =
            isWholeTextGood() ||
            (areChunksGood() && !TranscriptIntegrity::isSeverelyShorter(text, liveReference));
        EXPECT_EQ(transcriber->transcriptionComplete(), isGood && !hasCaptureFailed);
        if (transcriber->transcriptionComplete()) {
            confirmedFolders.append(folder);
            EXPECT_TRUE(QFileInfo::exists(url)) << "gone before anybody can have saved the text";
            EXPECT_EQ(transcriber->recoveryAudioURL(), QString());
            EXPECT_EQ(transcriber->processingMessage(), u"Transcription complete"_s);
        } else {
            keep(url);
            EXPECT_TRUE(QFileInfo::exists(url));
            EXPECT_EQ(transcriber->recoveryAudioURL(), url);
            EXPECT_EQ(transcriber->processingMessage(), u"Recording kept for recovery"_s);
            EXPECT_TRUE(transcriber->errorMessage().startsWith(
                u"The complete transcription could not be confirmed."_s));
        }
        folder.clear();
    }

    bool isWholeTextGood() const {
        return wholeText && !TranscriptIntegrity::isSeverelyShorter(*wholeText, liveReference);
    }
    bool areChunksGood() const {
        const qsizetype planned = AudioChunk::plan(transcriber->recordedDuration()).size();
        return qsizetype(enders.size()) == planned &&
               std::all_of(enders.begin(), enders.end(),
                           [](const auto &entry) { return entry.second == Ender::isFinal; });
    }

    // Cancelling

    void cancel() {
        const bool preserves = random.coin();
        const QString url = folder + u"/recording.caf"_s;
        const QString offered = transcriber->recoveryAudioURL();
        const QString shown = transcriber->transcript();
        const bool isOpening = isStarting && folder.isEmpty();
        transcriber->cancel(preserves);
        EXPECT_FALSE(transcriber->transcriptionComplete());
        EXPECT_EQ(transcriber->processingMessage(), QString());
        EXPECT_EQ(transcriber->transcript(), shown);
        if (!folder.isEmpty()) {
            EXPECT_EQ(QFileInfo::exists(url), preserves);
            EXPECT_EQ(transcriber->recoveryAudioURL(), preserves ? url : offered);
            if (preserves)
                keep(url);
            else
                ++discarded;
        } else if (isOpening && transcriber->recoveryAudioURL() != offered) {
            // The sound server was still waited for, and the first audio may have come.
            EXPECT_TRUE(preserves);
            EXPECT_EQ(transcriber->recoveryAudioURL(), newFolder() + u"/recording.caf"_s);
            keep(transcriber->recoveryAudioURL());
        }
        folder.clear();
        isAlive = isOpen = isFinishing = false;
        isCancelled = true;
    }

    void cancelACaller() {
        if (calls.empty())
            return;
        const auto first = std::max<qsizetype>(0, qsizetype(calls.size()) - 4);
        calls[size_t(random.number(int(first), int(calls.size()) - 1))]->task.cancel();
    }

    // What the microphone and the recogniser do

    void deliver() {
        const bool isFull = random.number(0, 49) == 0;
        if (isFull)
            ports.audioFile.frameLimit = 0;
        if (ports.audioInput.tap() && isFull)
            hasCaptureFailed = true;
        ports.audioInput.deliver(random.number(100, 1000), 0.1F);
        ports.audioFile.frameLimit = std::numeric_limits<qint64>::max();
        if (random.number(0, 49) == 0 && ports.audioInput.isRunning()) {
            hasCaptureFailed = true;
            ports.audioInput.end(u"gone"_s);
        }
    }

    QString words(const QString &locale, bool isStale) {
        const QString word = isStale ? staleWord : u"w"_s + locale.mid(3);
        return QStringList(random.number(0, 16), word).join(u' ');
    }

    /// One of the last few, so that late callbacks of old ones come too.
    template <class Pointer>
    Pointer someOf(const std::vector<Pointer> &all) {
        if (all.empty())
            return nullptr;
        const int last = int(all.size()) - 1;
        return all[size_t(random.coin() ? last : random.number(std::max(0, last - 4), last))];
    }

    void tellLive() {
        const auto request = someOf(ports.speech.liveRequests());
        if (!request)
            return;
        const QString heard = words(request->localeIdentifier, request->isCancelled);
        if (random.number(0, 9) == 0)
            request->fail(u"broke"_s);
        else
            request->give(FakeSpeech::result(heard, random.number(0, 9) == 0));
    }

    void tellFile() {
        const auto request = someOf(ports.speech.fileRequests());
        if (!request)
            return;
        const int kind = random.number(0, 9);
        if (!request->isCancelled && kind != 0 && isFinishing)
            enders.emplace(request->path, kind == 1 ? Ender::failed : Ender::isFinal);
        if (kind == 1)
            request->fail(u"broke"_s);
        else
            request->give(FakeSpeech::result(words(request->localeIdentifier, request->isCancelled),
                                             kind != 0));
    }

    void tellAnalysis() {
        const auto analysis = someOf(ports.speech.analyses);
        if (!analysis || analysis->path.isEmpty())
            return;
        const bool counts = !analysis->isCancelled && !isAnalysisOver && isFinishing;
        const int kind = random.number(0, 9);
        if (kind < 7) {
            const QString heard = words(analysis->localeIdentifier, analysis->isCancelled);
            analysis->give(heard, segmentStart++, 1);
            if (counts && !heard.isEmpty())
                wholeParts.append(heard);
        } else if (kind < 9) {
            analysis->end();
            if (counts)
                wholeText = wholeParts.join(u' ');
        } else {
            analysis->fail(u"broke"_s);
        }
        isAnalysisOver = isAnalysisOver || (counts && kind >= 7);
    }

    // What else may change

    void changeTheWorld() {
        switch (random.number(0, 8)) {
        case 0: clock.holdsBackground = random.coin(); break;
        case 1: ports.speech.hasAnalyzer = random.coin(); break;
        case 2: ports.audioInput.nativeFormat = random.number(0, 9) ? usual : AudioFormat{}; break;
        case 3:
            ports.audioInput.startError.reset();
            if (random.number(0, 9) == 0)
                ports.audioInput.startError = u"busy"_s;
            break;
        case 4: askAgain(); break;
        case 5:
        case 6: answerPrompts(); break;
        case 7:
            if (random.number(0, 9) == 0)
                replaceTheTranscriber();
            break;
        case 8: ports.audioInput.isSlow = random.coin(); break;
        }
    }

    void answerOfTheSoundServer() {
        if (random.coin())
            ports.audioInput.goOn();
        clock.runUntilIdle();
    }

    void answerPrompts() {
        const bool isAllowed = random.number(0, 9) != 0;
        ports.permissions.answerMicrophone(isAllowed);
        ports.permissions.answerSpeech(isAllowed);
        clock.runUntilIdle();
        // A refusal stands until the user thinks better of it.
        ports.permissions.microphone = ports.permissions.speech = random.number(0, 1) ? 3 : 0;
    }

    /// The prompts stand until they are answered in a step of their own.
    void askAgain() {
        ports.permissions.microphone = random.coin() ? 3 : 0;
        ports.permissions.speech = random.coin() ? 3 : 0;
        ports.permissions.microphoneAnswer.reset();
        ports.permissions.speechAnswer.reset();
    }

    void replaceTheTranscriber() {
        if (!folder.isEmpty())
            keep(folder + u"/recording.caf"_s);
        folder.clear();
        // What was only being opened stays, too.
        for (const QString &found : ports.recordingFolders())
            folders.insert(found);
        ++instance;
        transcriber = std::make_unique<SpeechTranscriber>(ports);
        isStarting = isAlive = isOpen = isFinishing = isCancelled = false;
    }

    // What holds at any time

    void check() {
        ASSERT_EQ(transcriber->isRecording(), ports.audioInput.isRunning());
        ASSERT_TRUE(!transcriber->isRecording() || isOpen);
        const QString mine =
            u"w"_s +
            ports.speech.requestedLocales.value(ports.speech.requestedLocales.size() - 1).mid(3);
        for (const QString &word : transcriber->transcript().split(u' ', Qt::SkipEmptyParts))
            ASSERT_EQ(word, mine) << "a stale text is shown";
        if (isCancelled) {
            ASSERT_EQ(transcriber->processingMessage(), QString());
            ASSERT_FALSE(transcriber->transcriptionComplete());
        }
        if (isOpen || isFinishing) {
            ASSERT_TRUE(QFileInfo::exists(folder + u"/recording.caf"_s));
        }
        for (const auto &call : calls)
            ASSERT_LE(call->resumptions, 1);
        if (calls.size() > 100)
            forgetOldOnes();
        if (keptFiles.size() > 50 && folder.isEmpty())
            checkKept();
    }

    void keep(const QString &url) {
        keptFiles.append(url);
        ++kept;
    }

    void checkKept() {
        for (const QString &url : keptFiles) {
            ASSERT_TRUE(QFileInfo::exists(url));
            QDir(QFileInfo(url).path()).removeRecursively();
        }
        keptFiles.clear();
    }

    /// Keeps the lists short, of which each step looks at the end only.
    void forgetOldOnes() {
        std::erase_if(calls, [](const auto &call) { return call->resumptions == 1; });
        auto &requests = ports.speech.requests;
        if (!isOpen && !isFinishing && requests.size() > 50)
            requests.erase(requests.begin(), requests.end() - 10);
    }

    Call &newCall() {
        calls.push_back(std::make_unique<Call>(Call{instance, session, 0, {}}));
        return *calls.back();
    }

    Random random;
    FakePorts ports;
    FakeClock &clock = ports.clock;
    std::unique_ptr<SpeechTranscriber> transcriber;

    // The model
    int instance = 0; ///< of the transcriber
    int session = 0;
    bool isStarting = false;  ///< a call of `start` is on its way
    bool isAlive = false;     ///< and has not been cancelled
    bool isCancelled = false; ///< since the last start
    bool isOpen = false;      ///< recording, or stopped by a failure
    bool isFinishing = false;
    bool hasCaptureFailed = false;
    QString folder; ///< of the session, while it is open or finishing
    QString liveReference;
    std::map<QString, Ender> enders;  ///< of the chunks of this finish
    std::optional<QString> wholeText; ///< once the analysis has heard everything
    QStringList wholeParts;           ///< of the analysis of this finish
    bool isAnalysisOver = false;
    double segmentStart = 0;

    std::vector<std::unique_ptr<Call>> calls;
    std::set<QString> folders;
    QStringList keptFiles;
    QStringList confirmedFolders;
    int kept = 0;
    int discarded = 0;
};

TEST(SpeechTranscriberModel, AnyOrderOfEventsKeepsThePromises) {
    Simulation simulation;
    constexpr int stepCount = 100'000;
    for (int i = 0; i < stepCount && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "step " << i);
        simulation.step();
    }
    if (!testing::Test::HasFailure())
        simulation.drain();
    std::cout << stepCount << " steps: " << simulation.summary().toStdString() << '\n';
    EXPECT_GT(simulation.confirmedCount(), 100);
}

} // namespace
} // namespace lorvane
