#include "Core/AudioChunk.h"
#include "Core/ChunkTranscriptAssembly.h"
#include "Core/LibraryFormat.h"
#include "Core/LocalRepository.h"
#include "Core/Printing.h"
#include "Core/Random.h"
#include "Core/Text.h"
#include "Core/TextProcessor.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using Entries = QList<VocabularyEntry>;

constexpr int rounds = 1000;

AppSnapshot toTheSecond(AppSnapshot snapshot) {
    for (TranscriptRecord &record : snapshot.history) {
        const double seconds =
            std::floor(static_cast<double>(record.createdAt.toMSecsSinceEpoch()) / 1000);
        record.createdAt = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(seconds), Qt::UTC);
    }
    return snapshot;
}

QStringList sortedKeys(const Entries &entries) {
    QStringList keys;
    for (const VocabularyEntry &entry : entries) {
        for (const QString &phrase : entry.matchingPhrases())
            keys.append(Text::caselessKey(phrase));
    }
    keys.sort();
    keys.removeDuplicates();
    return keys;
}

TEST(Properties, ASavedLibraryLoadsEqualWithItsDatesToTheSecond) {
    Random random;
    const QTemporaryDir folder;
    const LocalRepository repository(folder.filePath(u"library.json"_s));
    for (int round = 0; round < 100; ++round) {
        AppSnapshot snapshot = toTheSecond(random.snapshot());
        repository.save(snapshot);
        snapshot.vocabulary = VocabularyEntry::consolidated(snapshot.vocabulary);
        ASSERT_EQ(repository.load(), snapshot) << "round " << round;
    }
}

TEST(Properties, AnEncodedLibraryDecodesToTheSameUnits) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        const AppSnapshot snapshot = random.snapshot();
        const QByteArray file = encodeLibrary(snapshot);
        ASSERT_TRUE(file.isValidUtf8());
        const AppSnapshot decoded = decodeLibrary(file);
        ASSERT_EQ(decoded, toTheSecond(snapshot)) << "round " << round;
        ASSERT_TRUE(decoded.scratchpad == snapshot.scratchpad); // not only canonically
        ASSERT_EQ(encodeLibrary(decoded), file);
    }
}

TEST(Properties, ADamagedLibraryFailsOrLoadsButNeverCrashes) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        QByteArray file = encodeLibrary(random.snapshot());
        for (int i = random.number(1, 4); i > 0; --i) {
            const int place = random.number(0, static_cast<int>(file.size()) - 1);
            file[place] = static_cast<char>(random.number(0, 255));
        }
        try {
            decodeLibrary(file);
        } catch (const DecodingError &error) {
            ASSERT_TRUE(error.localizedDescription().contains(u"(line "_s));
        }
    }
}

TEST(Properties, NormalisingPhrasesTwiceIsNormalisingThemOnce) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        const QStringList once = VocabularyEntry::normalizedPhrases(random.texts(12, 3));
        ASSERT_EQ(VocabularyEntry::normalizedPhrases(once), once);
    }
}

TEST(Properties, ConsolidatingLosesNoPhrase) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        Entries entries = random.entries(8);
        for (VocabularyEntry &entry : entries) {
            if (random.coin())
                entry.replacement =
                    random.one(QStringList{u"X"_s, u"x"_s, u"\u00E9"_s, u"e\u0301"_s});
        }
        ASSERT_EQ(sortedKeys(VocabularyEntry::consolidated(entries)), sortedKeys(entries));
    }
}

TEST(Properties, ConsolidatingTwiceIsConsolidatingOnce) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        Entries entries;
        for (int i = random.number(0, 10); i > 0; --i) {
            // As every entry that the editor lets through: a phrase without blanks at its ends.
            QString phrase = Text::trimmed(random.text(3));
            if (phrase.isEmpty())
                phrase = u"p"_s;
            entries.append({phrase,
                            random.coin() ? random.one(QStringList{u"X"_s, u"Y"_s, phrase}) : u""_s,
                            random.texts(3, 2)});
        }
        const Entries once = VocabularyEntry::consolidated(entries);
        ASSERT_EQ(VocabularyEntry::consolidated(once), once);
    }
}

TEST(Properties, ProcessingWithNothingToDoIsTrimming) {
    Random random;
    const AppSettings neither{.removeFillers = false, .smartPunctuation = false};
    for (int round = 0; round < rounds; ++round) {
        const QString text = random.text(60);
        ASSERT_TRUE(TextProcessor::process(text, {}, {}, neither) == Text::trimmed(text))
            << testing::PrintToString(text);
    }
}

/// The dictionary step told once more, in the plainest way: every place, every pair.
QString slowlyReplaced(const QString &text, const Entries &entries) {
    struct Pair {
        QString phrase, replacement;
        qsizetype length;
    };
    QList<Pair> pairs;
    for (const VocabularyEntry &entry : entries) {
        for (const QString &phrase : entry.matchingPhrases())
            pairs.append({phrase, entry.preferredText(), Text::characterCount(phrase)});
    }
    std::ranges::stable_sort(pairs, std::ranges::greater{}, &Pair::length);
    const auto isWord = [&](qsizetype place) {
        return place >= 0 && place < text.size() &&
               (text[place].isLetterOrNumber() || text[place] == u'_');
    };
    QString output;
    for (qsizetype place = 0; place < text.size();) {
        const auto found = std::ranges::find_if(pairs, [&](const Pair &pair) {
            return text.sliced(place).startsWith(pair.phrase, Qt::CaseInsensitive) &&
                   !isWord(place - 1) && !isWord(place + pair.phrase.size());
        });
        if (found == pairs.end()) {
            output += text[place++];
        } else {
            output += found->replacement;
            place += found->phrase.size();
        }
    }
    return output;
}

TEST(Properties, TheDictionaryReplacesAsAPlainScanDoes) {
    Random random;
    const QStringList pieces{u"a"_s, u"B"_s, u"ab"_s, u"c"_s, u" "_s,
                             u"-"_s, u"+"_s, u"."_s,  u"_"_s, u"1"_s};
    const auto phrase = [&](int most) {
        QString text;
        for (int i = random.number(1, most); i > 0; --i)
            text += random.one(pieces);
        return text;
    };
    const AppSettings neither{.removeFillers = false, .smartPunctuation = false};
    for (int round = 0; round < 500; ++round) {
        Entries entries;
        for (int i = random.number(0, 12); i > 0; --i)
            entries.append(
                {phrase(3), random.coin() ? phrase(3) : QString(), {phrase(4), phrase(2)}});
        const QString text = Text::trimmed(phrase(40));
        ASSERT_EQ(TextProcessor::process(text, entries, {}, neither), slowlyReplaced(text, entries))
            << testing::PrintToString(text) << testing::PrintToString(entries);
    }
}

TEST(Properties, ProcessingIsTotalAndLeavesNoOuterBlanks) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        const QString text = random.text(60);
        const QString output = TextProcessor::process(text, {}, {}, AppSettings());
        ASSERT_TRUE(Text::trimmed(output) == output) << testing::PrintToString(text);
        TextProcessor::process(text, random.entries(6),
                               {{random.uuid(), random.text(2), random.text(5)}},
                               {u"en"_s, random.coin(), random.coin(), random.coin()});
    }
}

TEST(Properties, WordsCutAtAnySeamStitchBackToThemselves) {
    Random random;
    for (int round = 0; round < 200; ++round) {
        QList<TranscribedWord> words;
        double start = random.real(0, 1);
        for (int i = random.number(1, 60); i > 0; --i) {
            const double duration = random.real(0.05, 0.5);
            words.append(
                {random.one(QStringList{u"no"_s, u"yes,"_s, u"Caf\u00E9."_s, u"it"_s, u"so"_s}) +
                     QString::number(words.size()),
                 start, duration});
            start += duration + random.real(0.01, 0.4);
        }
        for (qsizetype seam = 0; seam <= words.size(); ++seam) {
            const qsizetype overlap = std::min<qsizetype>(seam, random.number(0, 8));
            QList<TranscribedWord> next = words.sliced(seam - overlap);
            for (TranscribedWord &word : next) {
                // Heard again: not quite then, nor quite so.
                if (overlap > 1 && &word - next.data() < overlap) {
                    word.start += random.real(-0.002, 0.002);
                    word.text = word.text.toUpper() + u'!';
                }
            }
            ChunkTranscriptAssembly assembly;
            assembly.append(words.first(seam));
            assembly.append(next);
            ASSERT_EQ(assembly.words(), words) << "round " << round << ", seam " << seam;
        }
    }
}

TEST(Properties, APlanCoversTheRecordingWithoutGaps) {
    Random random;
    for (int round = 0; round < rounds; ++round) {
        const double duration = std::exp(random.real(-10, 10));
        const double core = std::exp(random.real(-1, 6));
        const double overlap = random.coin() ? 0 : random.real(0, 2 * core);
        const QList<AudioChunk> plan = AudioChunk::plan(duration, core, overlap);
        const double slack = 1e-12 * duration;
        ASSERT_FALSE(plan.isEmpty());
        ASSERT_EQ(plan.first().start, 0);
        ASSERT_EQ(plan.first().coreStart, 0);
        ASSERT_NEAR(plan.last().coreEnd, duration, slack);
        ASSERT_NEAR(plan.last().end, duration, slack);
        for (int i = 0; i < plan.size(); ++i) {
            const AudioChunk &chunk = plan.at(i);
            ASSERT_EQ(chunk.index, i);
            ASSERT_LE(chunk.start, chunk.coreStart);
            ASSERT_LT(chunk.coreStart, chunk.coreEnd);
            ASSERT_LE(chunk.coreEnd, chunk.end);
            ASSERT_LE(chunk.end, duration);
            if (i > 0) {
                ASSERT_NEAR(chunk.coreStart, plan.at(i - 1).coreEnd, slack);
            }
        }
    }
}

} // namespace
} // namespace lorvane
