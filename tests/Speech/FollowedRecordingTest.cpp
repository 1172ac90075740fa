#include "Speech/FollowedRecording.h"
#include "Speech/Abandoned.h"
#include "Speech/AnalysisListener.h"
#include "Speech/RealEngine.h"
#include "Speech/SpeechListener.h"

#include <random>

namespace lorvane {

bool operator==(const SpeechAnalysisResult &a, const SpeechAnalysisResult &b) {
    return a.text == b.text && a.start == b.start && a.duration == b.duration;
}

void PrintTo(const SpeechAnalysisResult &result, std::ostream *stream) {
    *stream << result.start << " + " << result.duration << ": " << qPrintable(result.text);
}

namespace {

using namespace std::chrono_literals;

constexpr int rate = 44100;

using Results = std::vector<SpeechAnalysisResult>;

/// A recording of half a minute that is written to a file in pieces.
class FollowedRecordingTest : public testing::Test {
protected:
    FollowedRecordingTest() {
        std::vector<float> voice;
        for (const auto *name : {u"vm-nobox", u"demo-nogo", u"queue-youarenext", u"vm-nobox"}) {
            const std::vector<float> prompt =
                decodedAudio(promptPath(QString::fromUtf16(name)), rate);
            voice.insert(voice.end(), prompt.begin(), prompt.end());
            voice.resize(voice.size() + 9 * rate / 2);
        }
        for (const float sample : voice)
            samples_.insert(samples_.end(), 2, sample);
        writer_ = audioFile_.openForWriting(path_, {rate, 2});
    }

    bool isWritten() const { return written_ == samples_.size(); }
    void write(double seconds) {
        const auto wanted = static_cast<std::size_t>(seconds * rate) * 2;
        const std::size_t count = std::min(wanted, samples_.size() - written_);
        writer_->write({samples_.data() + written_, static_cast<qsizetype>(count / 2), 2});
        written_ += count;
    }
    Results finish(FileAnalysis &analysis) {
        Results results;
        const auto file = audioFile_.openForReading(path_);
        analysis.finish(*file,
                        [&](const SpeechAnalysisResult &result) { results.push_back(result); }, {});
        return results;
    }
    Results freshResults() {
        const auto file = audioFile_.openForReading(path_);
        FileAnalysis analysis(file->format(), real_.engine, {});
        return finish(analysis);
    }
    std::shared_ptr<FollowedRecording> follow() {
        const auto followed = std::make_shared<FollowedRecording>(
            audioFile_, real_.worker, real_.engine, path_, QStringList());
        followed->start();
        return followed;
    }

    SndfileAudioFile audioFile_;
    std::vector<float> samples_; ///< interleaved
    const QString path_ = writeAudio({});
    std::unique_ptr<AudioFileWriter> writer_;
    std::size_t written_ = 0;
    RealEngine real_{QStringLiteral("tiny")};
};

TEST_F(FollowedRecordingTest, GivesBitForBitWhatTheFinishedFileGives) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::exponential_distribution<double> seconds(1);
    const auto followed = follow();
    while (!isWritten()) {
        write(seconds(random));
        real_.pass(std::chrono::seconds(1));
    }
    writer_.reset();
    std::unique_ptr<FileAnalysis> analysis;
    real_.run([&](const std::stop_token &) { analysis = followed->take(); });
    ASSERT_TRUE(analysis);
    EXPECT_GE(analysis->settledCount(), 2U) << "nothing was done ahead";
    EXPECT_TRUE(analysis->isOf(*audioFile_.openForReading(path_), {}));
    const Results fresh = freshResults();
    EXPECT_GE(fresh.size(), 3U);
    EXPECT_EQ(finish(*analysis), fresh);
}

/// Sentences with short pauses, in which the model mishears a word when it hears them all at once.
class SecondHearingTest : public testing::Test {
protected:
    SecondHearingTest() {
        for (const auto *name : {u"conf-leaderhasleft", u"vm-tomakecall", u"vm-theperson"})
            say(QString::fromUtf16(name), 0.3);
        pause(0.5); // so that a longer one changes nothing
    }

    void say(const QString &prompt, double pauseAfter) {
        const std::vector<float> voice = decodedAudio(promptPath(prompt));
        samples_.insert(samples_.end(), voice.begin(), voice.end());
        pause(pauseAfter);
    }
    void pause(double seconds) {
        samples_.resize(samples_.size() + static_cast<std::size_t>(seconds * sampleRate));
    }
    static QString misheard() { return u"press forward to place"_qs; }
    static QString heardAgain() { return u"Press 4 to place"_qs; }

    SndfileAudioFile audioFile_;
    std::vector<float> samples_;
    RealEngine real_{QStringLiteral("base")};
};

TEST_F(SecondHearingTest, IsOfWhatIsFollowedNotOfWhatSomebodyWaitsFor) {
    const auto heardWith = [&](const QStringList &phrases) {
        const auto file = audioFile_.openForReading(writeAudio(samples_));
        FileAnalysis analysis(file->format(), real_.engine, phrases);
        Results results;
        analysis.finish(*file, [&](const auto &result) { results.push_back(result); }, {});
        return results;
    };
    const QString last = heardWith({}).front().text;
    EXPECT_TRUE(last.contains(misheard())) << qPrintable(last);
    pause(3);
    EXPECT_EQ(heardWith({}).front().text, last) << "settled, but nothing follows";
    say(u"vm-nobox"_qs, 5);
    EXPECT_EQ(heardWith({}).front().text, last) << "followed, but at the end";
    pause(5);
    const Results results = heardWith({});
    ASSERT_EQ(results.size(), 2U);
    const QString followed = results.front().text;
    EXPECT_TRUE(followed.contains(heardAgain())) << qPrintable(followed);
    EXPECT_EQ(heardWith({u"Anirudh"_qs}).front().text, followed)
        << "with a phrase that nobody says";
    EXPECT_EQ(heardWith({u"conference"_qs}).front().text, last) << "with a phrase in the stretch";
}

TEST_F(SecondHearingTest, IsTheSameWhenItIsDoneAhead) {
    const QString path = writeAudio({});
    const auto writer = audioFile_.openForWriting(path, {sampleRate, 1});
    pause(3);
    say(u"vm-nobox"_qs, 10); // the work ahead listens some seconds behind
    const auto followed = std::make_shared<FollowedRecording>(audioFile_, real_.worker,
                                                              real_.engine, path, QStringList());
    followed->start();
    for (std::size_t written = 0; written < samples_.size();) {
        const std::size_t count = std::min<std::size_t>(sampleRate, samples_.size() - written);
        writer->write({samples_.data() + written, static_cast<qsizetype>(count), 1});
        written += count;
        real_.pass(1s);
    }
    std::unique_ptr<FileAnalysis> analysis;
    real_.run([&](const std::stop_token &) { analysis = followed->take(); });
    ASSERT_TRUE(analysis);
    EXPECT_EQ(analysis->settledCount(), 2U);
    const auto file = audioFile_.openForReading(path);
    FileAnalysis fresh(file->format(), real_.engine, {});
    Results results[2];
    analysis->finish(*file, [&](const auto &result) { results[0].push_back(result); }, {});
    fresh.finish(*file, [&](const auto &result) { results[1].push_back(result); }, {});
    EXPECT_EQ(results[0], results[1]);
    EXPECT_TRUE(results[0].front().text.contains(heardAgain()));
}

TEST_F(FollowedRecordingTest, GoesOnWhereItWasInterrupted) {
    while (!isWritten())
        write(1);
    writer_.reset();
    const auto file = audioFile_.openForReading(path_);
    FileAnalysis analysis(file->format(), real_.engine, {});
    int interruptions = 0;
    for (bool isDone = false; !isDone;) {
        std::stop_source stop;
        // Later each time, so that it gets through at last.
        const std::jthread interrupting([&, time = 20ms * (interruptions + 1)] {
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable().wait_for(lock, time);
            stop.request_stop();
        });
        try {
            analysis.advance(*file, stop.get_token());
            isDone = true;
        } catch (const Abandoned &) {
            ++interruptions;
        }
    }
    EXPECT_GE(interruptions, 3);
    EXPECT_EQ(finish(analysis), freshResults());
}

TEST_F(FollowedRecordingTest, KeepsWhatIsDoneWhenAFileHasToBeRecognisedFirst) {
    /// Has a file come in front of the second step.
    class Interrupting : public AudioFile {
    public:
        explicit Interrupting(RecognitionWorker &worker) : worker_(worker) {}
        std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                        const AudioFormat &format) override {
            return files_.openForWriting(path, format);
        }
        std::unique_ptr<AudioFileReader> openForReading(const QString &path) override {
            if (++opened == 2)
                worker_.post([](std::stop_source &) {});
            return files_.openForReading(path);
        }

        std::atomic<int> opened = 0;

    private:
        SndfileAudioFile files_;
        RecognitionWorker &worker_;
    } interrupting(real_.worker);
    const auto followed = std::make_shared<FollowedRecording>(interrupting, real_.worker,
                                                              real_.engine, path_, QStringList());
    write(30);
    followed->start();
    real_.run([](const std::stop_token &) {});
    write(10);
    while (interrupting.opened < 2)
        real_.pass(1s);
    std::unique_ptr<FileAnalysis> analysis;
    real_.run([&](const std::stop_token &) { analysis = followed->take(); });
    ASSERT_TRUE(analysis);
    EXPECT_GE(analysis->settledCount(), 2U);
}

TEST_F(FollowedRecordingTest, NoticesThatTheFileIsAnother) {
    write(20);
    const auto followed = follow();
    real_.pass(std::chrono::seconds(1));
    std::unique_ptr<FileAnalysis> analysis;
    real_.run([&](const std::stop_token &) { analysis = followed->take(); });
    ASSERT_TRUE(analysis);
    EXPECT_TRUE(analysis->isOf(*audioFile_.openForReading(path_), {}));
    samples_[rate] += 0.01F;
    written_ = 0;
    writer_.reset();
    writer_ = audioFile_.openForWriting(path_, {rate, 2});
    write(20);
    EXPECT_FALSE(analysis->isOf(*audioFile_.openForReading(path_), {}));
    writer_.reset();
    audioFile_.openForWriting(path_, {rate, 1})->write({samples_.data(), qsizetype(30) * rate, 1});
    EXPECT_FALSE(analysis->isOf(*audioFile_.openForReading(path_), {}));
}

TEST_F(FollowedRecordingTest, IsOverWhenItIsCancelledOrTheFileCannotBeRead) {
    const auto followed = follow();
    write(20);
    followed->cancel();
    real_.pass(std::chrono::seconds(1));
    real_.run([&](const std::stop_token &) { EXPECT_FALSE(followed->take()); });

    const auto absent = std::make_shared<FollowedRecording>(
        audioFile_, real_.worker, real_.engine, u"/nowhere/recording.caf"_qs, QStringList());
    absent->start();
    real_.pass(std::chrono::seconds(1));
    EXPECT_EQ(absent.use_count(), 1);
}

TEST_F(FollowedRecordingTest, IsTakenUpByTheAnalyserOfItsFile) {
    const auto results = [&](const QString &path) {
        AnalysisListener listener;
        const auto analyzer = realSpeech().makeAnalyzer(u"en-AU"_qs, {});
        listener.start(*analyzer, path);
        EXPECT_TRUE(listener.waitForEnd());
        EXPECT_EQ(listener.heard().error.value_or(QString()), QString());
        return listener.heard().results;
    };
    auto following = realSpeech().followRecording(path_, u"en-AU"_qs, {});
    ASSERT_TRUE(following);
    while (!isWritten())
        write(1);
    writer_.reset();
    const Results ahead = results(path_);
    following.reset();
    EXPECT_EQ(ahead, results(path_));
    EXPECT_GE(ahead.size(), 3U);
}

} // namespace
} // namespace lorvane
