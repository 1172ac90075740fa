#include "Speech/SecondHearing.h"

#include "Speech/SameWords.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lorvane {

namespace {

// These are measured: see docs/recogniser.md.

/// In seconds.
constexpr double shortestPause = 0.3;
constexpr double shortestPart = 2.5;
/// Around the voice of a part, so that parts never overlap. It is narrower than around a stretch,
/// which gives another chance to a word that the model could as well have taken for another one.
constexpr double partMargin = 0.1;
/// The logarithm of a half: the model isn't sure of a word that is less probable than not.
constexpr double leastSure = -0.69;
/// So far apart, in seconds, may two hearings put a word: the same word somewhere else is another
/// one, and what stands between would be lost.
constexpr double farthestApart = 0.5;
/// By so much longer, in seconds, nothing is heard where a hearing overlooks what another one has,
/// if that has words so probable in the mean: in noise a model may make some up.
constexpr double leastOverlooked = 1;
constexpr double leastBelieved = -1;

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

/// The longest time without a word, in seconds, from `start` to `end`.
double longestGap(const QList<TimedWord> &words, double start, double end) {
    double longest = 0;
    for (const TimedWord &word : words) {
        longest = std::max(longest, word.start - start);
        start = word.end;
    }
    return std::max(longest, end - start);
}

/// Whether a part has no word. A model may pass over what one voice says between others.
bool isAnyOverlooked(const QList<TimedWord> &words, const std::vector<VoiceSpan> &parts) {
    return std::any_of(parts.begin(), parts.end(), [&](VoiceSpan part) {
        return std::none_of(words.begin(), words.end(), [&](const TimedWord &word) {
            return word.start < part.end && word.end > part.start;
        });
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
    double start = voice.empty() ? 0 : voice.front().start;
    for (std::size_t i = 0; i < voice.size(); ++i) {
        const double end = voice[i].end;
        const bool isLast = i + 1 == voice.size();
        if (!isLast && (voice[i + 1].start - end < shortestPause || end - start < shortestPart))
            continue;
        parts.push_back({std::max(start - partMargin, 0.0), std::min(end + partMargin, duration)});
        if (!isLast)
            start = voice[i + 1].start;
    }
    return parts;
}

QList<TimedWord> hearAgain(const QList<TimedWord> &words, const std::vector<VoiceSpan> &parts,
                           const QStringList &phrases, const Hear &hear) {
    const bool isSure = std::all_of(words.begin(), words.end(), [](const TimedWord &word) {
        return word.logProbability >= leastSure;
    });
    if ((isSure && !isAnyOverlooked(words, parts)) || hasPhrase(words, phrases))
        return words;
    QList<TimedWord> others;
    for (const VoiceSpan &part : parts)
        others.append(hear(part));
    return surerWords(words, others);
}

QList<TimedWord> surerWords(const QList<TimedWord> &words, const QList<TimedWord> &others) {
    if (words.isEmpty() || others.isEmpty())
        return words.isEmpty() ? others : words;
    const double start = std::min(words.front().start, others.front().start);
    const double end = std::max(words.back().end, others.back().end);
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
        // Words that were overlooked are no gain: more words are less probable than fewer.
        const double from = first > 0 ? words[first - 1].end : start;
        const double to = isEnd ? end : words[i].start;
        const bool isOverlooked =
            longestGap(run, from, to) - longestGap(otherRun, from, to) >= leastOverlooked &&
            logProbability(otherRun) >= leastBelieved * static_cast<double>(otherRun.size());
        const bool isOtherTaken = (gain > 0 || isOverlooked) && !otherRun.isEmpty() &&
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
