#include "Speech/SecondHearing.h"

#include "Speech/SameWords.h"
#include "Speech/StretchLimits.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lorvane {

namespace {

// These are measured: see docs/recogniser.md.

/// In seconds.
constexpr double shortestPause = 0.3;
constexpr double shortestPart = 2.5;
/// From this logarithm of its probability on the model is sure of a word.
constexpr double leastSure = -0.8;
/// By how much other words have to be more probable. All that was said before counts for something.
constexpr double leastGain = 0.4;
/// So far apart, in seconds, may two hearings put a word: the same word somewhere else is another
/// one, and what stands between would be lost.
constexpr double farthestApart = 0.5;

double logProbability(const QList<TimedWord> &words) {
    return std::accumulate(words.begin(), words.end(), 0.0, [](double sum, const TimedWord &word) {
        return sum + word.logProbability;
    });
}

/// What is said, word by word, without marks and capitals.
QStringList spoken(const QStringList &words) {
    QStringList spoken;
    for (const QString &word : words) {
        QString letters;
        std::copy_if(word.begin(), word.end(), std::back_inserter(letters),
                     [](QChar c) { return c.isLetterOrNumber() || c.isSurrogate(); });
        spoken.append(letters.toCaseFolded());
    }
    return spoken;
}

QStringList textsOf(const QList<TimedWord> &words) {
    QStringList texts;
    for (const TimedWord &word : words)
        texts.append(word.text);
    return texts;
}

bool hasPhrase(const QList<TimedWord> &words, const QStringList &phrases) {
    const auto padded = [](const QStringList &texts) {
        return u' ' + spoken(texts).join(u' ') + u' ';
    };
    const QString text = padded(textsOf(words));
    return std::any_of(phrases.begin(), phrases.end(), [&](const QString &phrase) {
        return text.contains(padded(phrase.split(u' ', Qt::SkipEmptyParts)));
    });
}

std::vector<int> wordsHeardTwice(const QList<TimedWord> &words, const QList<TimedWord> &others) {
    return sameWords(words.size(), others.size(), [&](qsizetype word, qsizetype other) {
        return words[word].text == others[other].text &&
               std::abs(words[word].start - others[other].start) <= farthestApart;
    });
}

/// Times of two hearings may differ a little: makes them go on from word to word.
void straighten(QList<TimedWord> &words) {
    for (qsizetype i = 1; i < words.size(); ++i) {
        words[i].start = std::max(words[i].start, words[i - 1].start);
        words[i].end = std::max(words[i].end, words[i].start);
        words[i - 1].end = std::min(words[i - 1].end, words[i].start);
    }
}

} // namespace

std::vector<VoiceSpan> partsOf(const std::vector<VoiceSpan> &voice, double duration) {
    std::vector<VoiceSpan> parts;
    double start = 0;
    double voiceStart = voice.empty() ? 0 : voice.front().start;
    for (std::size_t i = 0; i < voice.size(); ++i) {
        if (i + 1 == voice.size()) {
            parts.push_back({start, duration});
            break;
        }
        const double pause = voice[i + 1].start - voice[i].end;
        if (pause < shortestPause || voice[i].end - voiceStart < shortestPart)
            continue;
        const double middle = voice[i].end + pause / 2;
        parts.push_back({start, std::min(voice[i].end + marginAfter, middle)});
        voiceStart = voice[i + 1].start;
        start = std::max(voiceStart - marginBefore, middle);
    }
    return parts;
}

QList<TimedWord> hearAgain(const QList<TimedWord> &words, const std::vector<VoiceSpan> &parts,
                           const QStringList &phrases, const Hear &hear) {
    const bool isSure = std::all_of(words.begin(), words.end(), [](const TimedWord &word) {
        return word.logProbability >= leastSure;
    });
    if (parts.size() < 2 || isSure || hasPhrase(words, phrases))
        return words;
    QList<TimedWord> others;
    for (const VoiceSpan &part : parts)
        others.append(hear(part));
    return surerWords(words, others);
}

QList<TimedWord> surerWords(const QList<TimedWord> &words, const QList<TimedWord> &others) {
    const std::vector<int> same = wordsHeardTwice(words, others);
    QList<TimedWord> surer;
    qsizetype first = 0;
    qsizetype otherFirst = 0;
    for (qsizetype i = 0; i <= words.size(); ++i) {
        const bool isEnd = i == words.size();
        if (!isEnd && same[static_cast<std::size_t>(i)] < 0)
            continue;
        const qsizetype other = isEnd ? others.size() : same[static_cast<std::size_t>(i)];
        const QList<TimedWord> run = words.mid(first, i - first);
        const QList<TimedWord> otherRun = others.mid(otherFirst, other - otherFirst);
        // The word after them tells as well how well they go with what was heard.
        const double gain = logProbability(others.mid(otherFirst, other + 1 - otherFirst)) -
                            logProbability(words.mid(first, i + 1 - first));
        const bool isOtherTaken = gain > leastGain && !otherRun.isEmpty() &&
                                  spoken(textsOf(run)) != spoken(textsOf(otherRun));
        surer.append(isOtherTaken ? otherRun : run);
        if (!isEnd)
            surer.append(words[i]);
        first = i + 1;
        otherFirst = other + 1;
    }
    straighten(surer);
    return surer;
}

} // namespace lorvane
