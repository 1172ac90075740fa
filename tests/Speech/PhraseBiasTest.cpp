#include "Speech/DecodedAudio.h"
#include "Speech/Prompts.h"
#include "Speech/SpeechEngine.h"
#include "Speech/WordErrors.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace lorvane {
namespace {

SpeechEngine &engine() {
    static OnnxRuntime runtime(1);
    static SpeechEngine engine(runtime,
                               ModelFolder::find(QStringLiteral(LORVANE_MODELS), u"en"_qs).value(),
                               QStringLiteral(LORVANE_MODELS "/vad/silero.onnx"));
    return engine;
}

QList<TimedWord> heard(const std::vector<float> &samples, const QStringList &phrases) {
    SpeechOptions options;
    options.contextualStrings = phrases;
    return engine().recognize(samples, fileModel, options, {});
}

QString textOf(const QList<TimedWord> &words) { return makeResult(words, true).formattedString; }

std::vector<float> spoken(const QString &text) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"voice.wav"_qs);
    QProcess::execute(u"espeak-ng"_qs,
                      {u"-v"_qs, u"en-us"_qs, u"-s"_qs, u"150"_qs, u"-w"_qs, path, text});
    return decodedAudio(path);
}

/// Names that nobody says in the prompts.
const QStringList names{
    u"Kowalczyk"_qs,     u"Anirudh"_qs,      u"Siobhan"_qs,      u"Kubernetes"_qs,
    u"Nguyen"_qs,        u"Oluwaseun"_qs,    u"Przybylski"_qs,   u"Llandudno"_qs,
    u"Ljubljana"_qs,     u"Aoife"_qs,        u"Cassiopeia"_qs,   u"Vandersloot"_qs,
    u"Xiomara"_qs,       u"Andromache"_qs,   u"Mbeki-Olsson"_qs, u"Quillfeather"_qs,
    u"Grafana"_qs,       u"Esposito"_qs,     u"Reykjavik"_qs,    u"PostgreSQL"_qs,
    u"Chandrasekhar"_qs, u"Popocatepetl"_qs, u"Wittgenstein"_qs};

TEST(PhraseBias, LetsNamesComeOutAsTheUserSpellsThem) {
    int unaided = 0;
    for (const auto &[said, name] :
         {std::pair(u"My colleague Anirudh will call you in the afternoon."_qs, u"Anirudh"_qs),
          std::pair(u"The new database is called Cassiopeia."_qs, u"Cassiopeia"_qs),
          std::pair(u"Please look at the Grafana page again."_qs, u"Grafana"_qs)}) {
        const std::vector<float> samples = spoken(said);
        unaided += textOf(heard(samples, {})).contains(name) ? 1 : 0;
        const QString text = textOf(heard(samples, names));
        EXPECT_TRUE(text.contains(name)) << qPrintable(text);
        for (const QString &other : names) {
            EXPECT_TRUE(other == name || !text.contains(other)) << qPrintable(text);
        }
    }
    EXPECT_LT(unaided, 3) << "they need no help";
}

TEST(PhraseBias, ChangesNothingWhereNoPhraseIsSaid) {
    ASSERT_GE(prompts().size(), 100U) << "asterisk-core-sounds-en-g722 is missing";
    for (std::size_t i = 0; i < prompts().size(); i += 20) {
        const std::vector<float> samples = decodedAudio(prompts()[i].path);
        EXPECT_EQ(textOf(heard(samples, names)), textOf(heard(samples, {})));
    }
}

TEST(PhraseBias, LeavesAPhraseAsItIsThatASentenceBeginsWith) {
    std::vector<float> samples = decodedAudio(promptPath(u"demo-congrats"_qs));
    samples.resize(std::size_t(15) * SpeechModel::sampleRate);
    const QString plain = textOf(heard(samples, {}));
    ASSERT_TRUE(plain.startsWith(u"Congratulations"_qs)) << qPrintable(plain);
    const QString text = textOf(heard(samples, {u"congratulations"_qs}));
    EXPECT_EQ(text, plain) << qPrintable(text);
}

TEST(PhraseBias, LeavesAPhraseThatWasHeardAndNotAnotherThatSoundsLikeIt) {
    const std::vector<float> samples = spoken(u"I think that Catherine is the right word here."_qs);
    const QString plain = textOf(heard(samples, {}));
    ASSERT_TRUE(plain.contains(u"Catherine"_qs)) << qPrintable(plain);
    EXPECT_TRUE(textOf(heard(samples, {u"Katherine"_qs})).contains(u"Katherine"_qs));
    EXPECT_EQ(textOf(heard(samples, {u"Katherine"_qs, u"Catherine"_qs})), plain);
}

TEST(PhraseBias, FindsAPhraseThatBeginsWithAnother) {
    const std::vector<float> samples = spoken(u"Catherine Kowalczyk will call you again."_qs);
    const QString plain = textOf(heard(samples, {}));
    ASSERT_TRUE(plain.contains(u"Catherine"_qs)) << qPrintable(plain);
    ASSERT_FALSE(plain.contains(u"Kowalczyk"_qs)) << qPrintable(plain);
    const QString text = textOf(heard(samples, {u"Catherine"_qs, u"Catherine Kowalczyk"_qs}));
    EXPECT_TRUE(text.startsWith(u"Catherine Kowalczyk"_qs)) << qPrintable(text);
}

TEST(PhraseBias, KeepsTheTimesOfTheWords) {
    const std::vector<float> samples =
        spoken(u"Please look at the Grafana page again before the meeting."_qs);
    const QList<TimedWord> plain = heard(samples, {});
    const QList<TimedWord> biased = heard(samples, names);
    ASSERT_FALSE(biased.isEmpty());
    double last = 0;
    int compared = 0;
    for (const TimedWord &word : biased) {
        EXPECT_GE(word.start, last);
        last = word.start;
        for (const TimedWord &other : plain) {
            if (other.text == word.text && std::abs(other.start - word.start) < 0.5) {
                EXPECT_NEAR(other.start, word.start, 0.1) << qPrintable(word.text);
                ++compared;
            }
        }
    }
    EXPECT_GE(compared, 5) << qPrintable(textOf(biased));
}

TEST(PhraseBias, GivesTheSameEachTime) {
    const std::vector<float> samples = spoken(u"Anirudh knows Kowalczyk and Wittgenstein well."_qs);
    const QList<TimedWord> first = heard(samples, names);
    const QList<TimedWord> second = heard(samples, names);
    ASSERT_EQ(first.size(), second.size());
    for (qsizetype i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].text, second[i].text);
        EXPECT_EQ(first[i].start, second[i].start);
        EXPECT_EQ(first[i].end, second[i].end);
    }
}

} // namespace
} // namespace lorvane
