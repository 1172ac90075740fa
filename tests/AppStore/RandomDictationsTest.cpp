// Whatever the user, the desktop and the recogniser do, in whatever order: some things always hold.

#include "Core/Random.h"
#include "StoreFixture.h"

#include <QFileInfo>

#include <map>
#include <set>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {
namespace {

using Phase = HoldToTalkState::Phase;
using Mode = RecordingOverlay::Mode;

// A sanitizer makes each step ten times as slow.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int stepCount = 20'000;
#else
constexpr int stepCount = 100'000;
#endif
/// Few samples, so that a recording of several parts is cheap.
constexpr AudioFormat usualFormat{8000, 1};

/// Keeps the many files of this test off the disk, where each would be synced.
class FilesInMemory {
public:
    FilesInMemory() {
        if (QFileInfo(u"/dev/shm"_s).isWritable())
            qputenv("TMPDIR", "/dev/shm");
    }
    ~FilesInMemory() {
        if (before_.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", before_);
    }
    FilesInMemory(const FilesInMemory &) = delete;
    FilesInMemory &operator=(const FilesInMemory &) = delete;

private:
    const QByteArray before_ = qgetenv("TMPDIR");
};

class RandomDictationsTest : FilesInMemory, public DictationTest {
protected:
    Random random;
    std::map<std::string, int> counts; ///< how often each thing happened that the test is about

    // What is known of the dictation under way.
    bool keyIsDown = false;
    bool captureEnded = false;     ///< by itself
    bool recogniserFailed = false; ///< with this recording
    std::size_t firstRequest = 0;  ///< of this dictation
    std::optional<RunningApplication> target;
    std::optional<AccessibleElement> targetField;
    bool pasteIsOwed = false; ///< the text is saved, and its delivery isn't over
    std::set<const FakeSpeech::Request *> answered; ///< whatever comes then is too late

    const RunningApplication own{QCoreApplication::applicationPid(), 9, 9};
    const AccessibleElement otherField{u":1.5"_s, u"/other"_s};

    void start() {
        ports.audioInput.nativeFormat = usualFormat;
        makeStore();
        keyIsDown = false;
        pasteIsOwed = false;
        QObject::connect(store.get(), &AppStore::statusMessageChanged, [this] {
            if (store->statusMessage() == u"Preparing microphone…"_s)
                startWasAccepted();
            if (pasteIsOwed && store->statusMessage() == notPasted)
                ++counts["paste given up"];
            pasteIsOwed = false;
        });
        QObject::connect(store.get(), &AppStore::historyChanged,
                         [this, count = store->historyCount()]() mutable {
                             pasteIsOwed = pasteIsOwed || store->historyCount() > count;
                             count = store->historyCount();
                         });
        ports.keyboard.onPaste = [this] { checkPaste(); };
    }

    // What may happen

    void startWasAccepted() {
        ++counts["start accepted"];
        captureEnded = false;
        recogniserFailed = false;
        firstRequest = ports.speech.requests.size();
        const auto front = ports.workspace.front;
        target = front && (store->isHoldingToTalk() || front != own) ? front : std::nullopt;
        targetField = target && ports.permissions.accessibility &&
                              ports.accessibility.focused.contains(target->processId)
                          ? std::optional(ports.accessibility.focused[target->processId])
                          : std::nullopt;
    }

    void press_() {
        const bool grants = ports.permissions.microphone == 3 && ports.permissions.speech == 3;
        const bool accepted = !keyIsDown && !store->isBusy() && !store->hasStarted() &&
                              store->holdPhase() == Phase::idle;
        const bool wasBusy = store->isBusy();
        keyIsDown = true;
        press();
        EXPECT_EQ(store->isBusy(), (accepted && grants) || wasBusy);
        if (accepted && !grants) {
            EXPECT_TRUE(store->isSetupPresented());
        }
    }

    void release_() {
        const Phase phase = store->holdPhase();
        const bool heard = keyIsDown;
        keyIsDown = false;
        release();
        if (heard && phase == Phase::preparing) {
            EXPECT_EQ(store->statusMessage(), early);
        } else if (heard && phase == Phase::recording)
            EXPECT_EQ(store->holdPhase(), Phase::finishing);
        else
            EXPECT_EQ(store->holdPhase(), phase);
    }

    void toggle() {
        const bool wasBusy = store->isBusy();
        const bool hadStarted = store->hasStarted();
        store->toggleRecording();
        if (wasBusy || hadStarted) {
            EXPECT_EQ(store->hasStarted(), hadStarted);
        }
    }

    void cancel() {
        const bool wasBusy = store->isBusy();
        const auto before = std::tuple(store->statusMessage(), store->hasStarted(),
                                       store->holdPhase(), liveFolders());
        store->cancelRecording();
        if (wasBusy) {
            EXPECT_EQ(before, std::tuple(store->statusMessage(), store->hasStarted(),
                                         store->holdPhase(), liveFolders()));
        } else {
            ++counts["cancelled"];
            EXPECT_EQ(store->statusMessage(), u"Dictation cancelled."_s);
            EXPECT_FALSE(store->isRecording());
            EXPECT_EQ(liveFolders(), QStringList());
        }
    }

    void captureEnds() {
        if (!ports.audioInput.isRunning())
            return;
        ++counts["capture ended by itself"];
        captureEnded = true;
        ports.audioInput.end(u"Entity killed"_s);
    }

    /// The recogniser answers a question of now or of long ago.
    void recogniserAnswers() {
        if (ports.speech.requests.empty())
            return;
        const auto &requests = ports.speech.requests;
        const auto index =
            random.number(0, 3) > 0
                ? requests.size() - 1
                : static_cast<std::size_t>(random.number(0, static_cast<int>(requests.size()) - 1));
        const auto &request = requests[index];
        const bool isOfNow = index >= firstRequest && !request->isLive && !request->isCancelled &&
                             !answered.contains(request.get());
        const QString words = random.one(QStringList{u"hello"_s, u"use kube ctl"_s, u"um uh"_s,
                                                     u"a somewhat longer sentence"_s, QString()});
        const bool isFinal = random.number(0, 3) > 0;
        if (random.number(0, 9) > 0) {
            if (isFinal)
                answered.insert(request.get());
            request->give(FakeSpeech::result(words, isFinal));
            return;
        }
        answered.insert(request.get());
        recogniserFailed = recogniserFailed || isOfNow;
        if (random.coin())
            request->giveAndFail(FakeSpeech::result(words, false), u"Broken."_s);
        else
            request->fail(u"Broken."_s);
    }

    void grantChanges() {
        // Mostly given, or little else would happen.
        const auto status = [this] { return random.number(0, 2) > 0 ? 3 : random.number(0, 3); };
        switch (random.number(0, 4)) {
        case 0: ports.permissions.microphone = status(); return;
        case 1: ports.permissions.speech = status(); return;
        case 2: ports.permissions.accessibility = random.number(0, 2) > 0; return;
        case 3: ports.permissions.answerMicrophone(random.coin()); return;
        case 4: ports.permissions.answerSpeech(random.coin()); return;
        }
    }

    void startsFail() {
        ports.audioInput.startError.reset();
        ports.audioInput.nativeFormat = usualFormat;
        ports.speech.isAvailable = true;
        switch (random.number(0, 6)) {
        case 0: ports.audioInput.startError = u"The source is busy"_s; return;
        case 1: ports.audioInput.nativeFormat = {}; return;
        case 2: ports.speech.isAvailable = false; return;
        default: return;
        }
    }

    void desktopChanges() {
        switch (random.number(0, 3)) {
        case 0: ports.workspace.bringForward(random.one(QList{editor, browser, own})); return;
        case 1: ports.workspace.canActivate = random.number(0, 3) > 0; return;
        case 2:
            ports.accessibility.focused[editor.processId] = random.coin() ? field : otherField;
            return;
        case 3: ports.accessibility.canSetFocus = random.number(0, 3) > 0; return;
        }
    }

    void userEdits() {
        switch (random.number(0, 6)) {
        case 0: store->setScratchpad(random.text(5)); return;
        case 1: setAutoPaste(random.coin()); return;
        case 2: store->showSetupGuide(random.number(0, 4)); return;
        case 3: store->finishSetup(); return;
        case 4: store->previewRecordingIndicator(); return;
        case 5: store->requestMicrophoneAccess(); return;
        case 6:
            if (store->historyCount() > 1)
                store->deleteTranscript(store->history().last());
            return;
        }
    }

    void quit() {
        const bool wasRecording = store->hasStarted();
        const QStringList live = liveFolders();
        for (int times = random.number(1, 3); times > 0; --times)
            store->shutdown();
        ++counts["quit"];
        if (wasRecording && !live.isEmpty()) {
            ++counts["quit while recording"];
            EXPECT_EQ(QFileInfo(store->recoveryAudioURL()).path(), live.first());
            EXPECT_TRUE(QFileInfo::exists(live.first()));
        }
        EXPECT_FALSE(ports.audioInput.isRunning());
        EXPECT_FALSE(ports.hotKey.isRegistered());
        EXPECT_FALSE(ports.overlayPanel.visible);
        EXPECT_EQ(liveFolders(), QStringList()) << "what isn't kept is gone";
        // What was under way winds down.
        for (int i = random.number(0, 20); i > 0; --i) {
            random.coin() ? timePasses() : recogniserAnswers();
            EXPECT_FALSE(ports.audioInput.isRunning());
            EXPECT_FALSE(store->hasStarted());
        }
        settle();
        start();
    }

    /// Lets everything end that the user needn't end.
    void settle() {
        ports.clock.holdsBackground = false;
        for (int i = 0; i < 20 && (i < 2 || store->isBusy()); ++i) {
            ports.permissions.answerMicrophone(true);
            ports.permissions.answerSpeech(true);
            ports.clock.runUntilIdle();
            if (!ports.speech.fileRequests().empty()) {
                const auto request = ports.speech.fileRequests().back();
                answered.insert(request.get());
                request->give(FakeSpeech::result(u"hello"_s, true));
            }
            ports.clock.advance(1s);
        }
        EXPECT_FALSE(store->isBusy()) << "nothing is under way that could lower it";
    }

    void timePasses() {
        switch (random.number(0, 5)) {
        case 0:
        case 1: ports.clock.runOnePosted(); return;
        case 2:
        case 3: ports.clock.runUntilIdle(); return;
        case 4: ports.clock.advance(std::chrono::milliseconds(random.number(1, 300))); return;
        case 5: ports.clock.holdsBackground = random.number(0, 3) == 0; return;
        }
    }

    void step() {
        const int what = random.number(0, 999);
        if (what < 60)
            press_();
        else if (what < 110)
            release_();
        else if (what < 140)
            toggle();
        else if (what < 145)
            cancel();
        else if (what < 155)
            captureEnds();
        else if (what < 170)
            startsFail();
        else if (what < 190)
            grantChanges();
        else if (what < 210)
            desktopChanges();
        else if (what < 225)
            userEdits();
        else if (what < 300)
            ports.audioInput.deliver(random.number(0, 99) > 0 ? random.number(1, 100) : 31 * 8000,
                                     0.1F);
        else if (what < 460)
            recogniserAnswers();
        else if (what < 987)
            timePasses();
        else if (what < 996)
            settle();
        else
            quit();
    }

    // What always holds

    /// The recordings on the disk that aren't kept for the user. Those that are, are taken away, as
    /// the user might, to keep the folder short.
    QStringList liveFolders() {
        const QString folder = QFileInfo(store->recoveryAudioURL()).path();
        if (!store->recoveryAudioURL().isEmpty() && QDir(folder).exists()) {
            ++counts["recording kept"];
            QDir(folder).removeRecursively();
        }
        return ports.recordingFolders();
    }

    void checkPaste() {
        ++counts["pasted"];
        EXPECT_TRUE(pasteIsOwed) << "after a give-up, or twice";
        pasteIsOwed = false;
        EXPECT_FALSE(captureEnded) << "the transcript can't be complete";
        EXPECT_FALSE(recogniserFailed) << "the transcript can't be complete";
        EXPECT_EQ(liveFolders(), QStringList()) << "the recording goes with the confirmation";
        const auto onDisk = LocalRepository(ports.libraryPath()).load().history;
        ASSERT_FALSE(onDisk.isEmpty());
        EXPECT_EQ(ports.pasteboard.text, onDisk.first().text);
        if (target) {
            EXPECT_EQ(ports.workspace.front, target);
        }
        if (targetField) {
            EXPECT_EQ(ports.accessibility.focused[target->processId], *targetField);
        }
    }

    /// A record is on the disk when the step that made it is over.
    void checkNewRecord(const QUuid &newestBefore) {
        if (store->history().isEmpty() || store->history().first().id == newestBefore)
            return;
        const TranscriptRecord &record = store->history().first();
        ++counts["record made"];
        EXPECT_GT(record.wordCount(), 0) << "a record without text";
        const auto onDisk = LocalRepository(ports.libraryPath()).load().history;
        ASSERT_FALSE(onDisk.isEmpty());
        EXPECT_EQ(onDisk.first().id, record.id);
    }

    void checkInvariants() {
        const bool isBusy = store->isBusy();
        const bool hasStarted = store->hasStarted();
        const Phase phase = store->holdPhase();
        EXPECT_FALSE(isBusy && hasStarted);
        if (ports.audioInput.isRunning()) {
            EXPECT_TRUE(isBusy || hasStarted) << "the microphone is open for nobody";
        }
        if (hasStarted) {
            EXPECT_TRUE(ports.audioInput.isRunning() || captureEnded);
        }
        EXPECT_FALSE(phase == Phase::recording && !isBusy && !hasStarted);
        EXPECT_FALSE(phase == Phase::preparing && !isBusy);
        EXPECT_FALSE(phase == Phase::finishing && !isBusy && !hasStarted);
        EXPECT_FALSE(store->isRecording() && !isBusy && !hasStarted);

        EXPECT_LE(liveFolders().size(), 1) << "more than one recording";
        if (!isBusy && !hasStarted) {
            EXPECT_TRUE(liveFolders().isEmpty() || clock().hasPosted()) << "an orphaned recording";
        }

        if (hasStarted) {
            EXPECT_TRUE(ports.overlayPanel.visible);
        }
        if (ports.overlayPanel.visible && !isBusy && !hasStarted) {
            EXPECT_EQ(meter().mode(), Mode::preview);
        }
    }
};

TEST_F(RandomDictationsTest, NothingIsLostOrMisplaced) {
    start();
    for (int i = 0; i < stepCount && !HasFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        const QUuid newest = store->history().isEmpty() ? QUuid() : store->history().first().id;
        step();
        checkNewRecord(newest);
        checkInvariants();
        // Not while a text waits for its paste: it would be gone from the disk by then.
        if (store->historyCount() > 20 && !store->isBusy())
            store->clearHistory();
    }
    if (HasFailure())
        return;
    for (const auto &[what, count] : counts)
        std::cout << what << ": " << count << "\n";
    for (const char *what :
         {"start accepted", "cancelled", "capture ended by itself", "pasted", "paste given up",
          "record made", "quit while recording", "recording kept"})
        EXPECT_GT(counts[what], stepCount / 20'000) << what << ": too seldom to mean anything";
}

} // namespace
} // namespace lorvane
