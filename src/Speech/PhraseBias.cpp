#include "Speech/PhraseBias.h"

#include "Speech/BeamSearch.h"
#include "Speech/Phonetics.h"
#include "Speech/SameWords.h"

#include <QSet>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace lorvane {

namespace {

/// By how much of the logarithm of its probability a text may fall behind for each token of a
/// phrase, by how much the phrase sounds like what it replaces. A name, by its capitals, may cost
/// more: a word by itself is known to the model, which would have heard it. A name that sounds the
/// same is only another spelling, and the user's is the right one. These are measured: see
/// docs/recogniser.md.
double allowance(double likeness, bool isName) {
    if (isName)
        return likeness >= 0.95 ? 4 : std::clamp(5 * likeness - 1, 0.4, 2.9);
    return likeness >= 0.9 ? 2.25 : std::clamp(4 * likeness - 1.2, 0.4, 1.5);
}

/// For another form of the phrase, as "participants" for "participant": what was heard is a word.
constexpr double formAllowance = 0.6;
/// For what was heard as one word that is so common that it is a token: the share of the above.
constexpr double commonShare = 0.6;

/// A search has to be more generous than the judgement on what it finds: a phrase may look bad
/// until it is whole. With more than this it would say a phrase over and over.
double reward(double likeness) { return std::min(0.5 + 3.4 * likeness, 3.5); }

/// A phrase that sounds less than this like anything that was heard is not looked for.
constexpr double leastLikeness = 0.3;

/// How often the search begins anew, with less trust in a phrase that was wrong.
constexpr int mostSearches = 4;

/// A word of a decoding: its tokens from `first` up to `last`.
struct Word {
    std::size_t first = 0;
    std::size_t last = 0;
    QString text; ///< its letters and digits
    std::u16string sounds;
};

QString lettersOf(const QString &text) {
    QString letters;
    std::copy_if(text.begin(), text.end(), std::back_inserter(letters),
                 [](QChar c) { return c.isLetterOrNumber(); });
    return letters;
}

std::vector<Word> wordsOf(const Decoding &decoding, const TokenTable &tokens) {
    std::vector<Word> words;
    std::vector<QByteArray> texts;
    for (std::size_t i = 0; i < decoding.tokens.size(); ++i) {
        if (words.empty() || tokens.beginsWord(decoding.tokens[i])) {
            words.push_back({i, i, {}, {}});
            texts.emplace_back();
        }
        words.back().last = i + 1;
        texts.back() += tokens.bytes(decoding.tokens[i]);
    }
    for (std::size_t i = 0; i < words.size(); ++i) {
        const QString text = QString::fromUtf8(texts[i]);
        words[i].text = lettersOf(text);
        words[i].sounds = soundsOf(text);
    }
    return words;
}

QStringList textsOf(const std::vector<Word> &words) {
    QStringList texts;
    for (const Word &word : words)
        texts.append(word.text);
    return texts;
}

/// A phrase to listen for.
struct Phrase {
    std::vector<Token> tokens;
    std::vector<Token> tokensInFront; ///< as a sentence was heard to begin with it, or none
    QString text;                     ///< its letters and digits
    std::u16string sounds;
    bool isName = false;
    double likeness = 0; ///< to what was heard without it
    double trust = 1;    ///< less when it was found where it was not said
};

/// Whether one text is the other with an ending, or with another one.
bool isForm(const QString &text, const QString &other) {
    constexpr qsizetype longestEnding = 3;
    constexpr qsizetype shortestStem = 4;
    static const QSet<QString> endings{u"s"_qs,   u"es"_qs,  u"ed"_qs, u"d"_qs,  u"ing"_qs,
                                       u"er"_qs,  u"ers"_qs, u"or"_qs, u"te"_qs, u"ted"_qs,
                                       u"tes"_qs, u"nt"_qs,  u"ly"_qs, u"ion"_qs};
    qsizetype stem = 0;
    while (stem < text.size() && stem < other.size() &&
           text[stem].toLower() == other[stem].toLower())
        ++stem;
    const QString ending = text.mid(stem).toLower();
    const QString otherEnding = other.mid(stem).toLower();
    if (ending.isEmpty() || otherEnding.isEmpty())
        return std::max(ending.size(), otherEnding.size()) <= longestEnding &&
               ending != otherEnding;
    return stem >= shortestStem && endings.contains(ending) && endings.contains(otherEnding);
}

/// The run of words that sounds most like a phrase: how much, and what the phrase is allowed to
/// cost for each token in its place.
struct Replaced {
    double likeness = 0;
    double allowed = allowance(0, false);
    std::size_t last = 0; ///< where the run ends
};
Replaced replacedBy(const Phrase &phrase, std::span<const Word> words) {
    Replaced best;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::u16string run;
        QString text;
        for (std::size_t j = i; j < words.size() && run.size() <= phrase.sounds.size() + 2; ++j) {
            run += words[j].sounds;
            text += words[j].text;
            const double alike = likeness(phrase.sounds, run);
            if (alike <= best.likeness)
                continue;
            const bool isCommon = i == j && words[i].last == words[i].first + 1;
            best = {alike,
                    isForm(phrase.text, text)
                        ? formAllowance
                        : allowance(alike, phrase.isName) * (isCommon ? commonShare : 1),
                    alike >= leastLikeness ? j + 1 : 0};
        }
    }
    return best;
}

/// A place where two decodings differ: the words from `first` up to `last`, and those of the other.
struct Difference {
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t otherFirst = 0;
    std::size_t otherLast = 0;
};

std::vector<Difference> differences(const std::vector<Word> &words,
                                    const std::vector<Word> &others) {
    const std::vector<int> same = sameWords(textsOf(words), textsOf(others));
    std::vector<Difference> found;
    std::size_t first = 0;
    std::size_t otherFirst = 0;
    for (std::size_t i = 0; i <= words.size(); ++i) {
        if (i < words.size() && same[i] < 0)
            continue;
        const std::size_t other =
            i < words.size() ? static_cast<std::size_t>(same[i]) : others.size();
        if (i > first || other > otherFirst)
            found.push_back({first, i, otherFirst, other});
        first = i + 1;
        otherFirst = other + 1;
    }
    return found;
}

/// The logarithm of the probability of some words and of the beginning of what follows them.
double logProbability(const Decoding &decoding, const std::vector<Word> &words, std::size_t first,
                      std::size_t last) {
    const auto place = [&](std::size_t word) {
        return word < words.size() ? words[word].first : decoding.tokens.size();
    };
    const std::size_t end = std::min(place(last) + 1, decoding.tokens.size());
    double sum = 0;
    for (std::size_t i = place(first); i < end; ++i)
        sum += static_cast<double>(decoding.logProbabilities[i]);
    return sum;
}

/// Those that have a token in the words from `first` up to `last`.
std::vector<PhraseSpan> phrasesWithin(const std::vector<PhraseSpan> &spans,
                                      const std::vector<Word> &words, std::size_t first,
                                      std::size_t last) {
    std::vector<PhraseSpan> within;
    std::copy_if(spans.begin(), spans.end(), std::back_inserter(within),
                 [&](const PhraseSpan &span) {
                     return first < last && span.last > words[first].first &&
                            span.first < words[last - 1].last;
                 });
    return within;
}

/// Whether a phrase that was heard without help has given way to one that it is no part of: it is
/// what was said, and not another one that sounds like it.
bool isAnyLost(const std::vector<PhraseSpan> &heard, const std::vector<PhraseSpan> &found,
               const std::vector<Phrase> &phrases) {
    const auto textOf = [&](const PhraseSpan &span) {
        return phrases[static_cast<std::size_t>(span.phrase)].text;
    };
    return std::any_of(heard.begin(), heard.end(), [&](const PhraseSpan &lost) {
        return std::none_of(found.begin(), found.end(), [&](const PhraseSpan &span) {
            return textOf(span).contains(textOf(lost), Qt::CaseInsensitive);
        });
    });
}

qsizetype letterCount(std::span<const Word> words) {
    return std::accumulate(words.begin(), words.end(), qsizetype{0},
                           [](qsizetype sum, const Word &word) { return sum + word.text.size(); });
}

/// What became of the phrases in a text that was found with them.
struct Judgement {
    bool isCutOff = false;   ///< it leaves out what was heard without them
    bool hasPhrases = false; ///< that are not heard without them
    int wrong = -1;          ///< one that was not said, or -1
};

Judgement judge(const Decoding &found, const Decoding &plain, const std::vector<Word> &plainWords,
                const std::vector<Phrase> &phrases, const PhraseTrie &trie,
                const TokenTable &tokens) {
    const std::vector<Word> words = wordsOf(found, tokens);
    const std::vector<PhraseSpan> spans = findPhrases(found.tokens, trie, tokens);
    const std::vector<PhraseSpan> plainSpans = findPhrases(plain.tokens, trie, tokens);
    Judgement judgement;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        // A phrase that is rewarded tends to be said again.
        if (spans[i].phrase == spans[i - 1].phrase && spans[i].first == spans[i - 1].last)
            judgement.wrong = spans[i].phrase;
    }
    for (const Difference &place : differences(words, plainWords)) {
        // What was heard once is replaced by one phrase.
        auto replaced =
            std::span(plainWords).subspan(place.otherFirst, place.otherLast - place.otherFirst);
        const auto instead = std::span(words).subspan(place.first, place.last - place.first);
        if (letterCount(replaced) > letterCount(instead) + mostLettersLost)
            judgement.isCutOff = true;
        if (instead.empty())
            continue;
        double allowed = 0;
        double least = 2;
        int leastLike = -1;
        const std::vector<PhraseSpan> here = phrasesWithin(spans, words, place.first, place.last);
        for (const PhraseSpan &span : here) {
            const Replaced by =
                replacedBy(phrases[static_cast<std::size_t>(span.phrase)], replaced);
            replaced = replaced.subspan(by.last);
            allowed += by.allowed * static_cast<double>(span.last - span.first);
            if (by.likeness < least) {
                least = by.likeness;
                leastLike = span.phrase;
            }
        }
        if (leastLike < 0)
            continue;
        const double cost = logProbability(plain, plainWords, place.otherFirst, place.otherLast) -
                            logProbability(found, words, place.first, place.last);
        const std::vector<PhraseSpan> heard =
            phrasesWithin(plainSpans, plainWords, place.otherFirst, place.otherLast);
        if (cost > allowed || isAnyLost(heard, here, phrases))
            judgement.wrong = leastLike;
        else
            judgement.hasPhrases = true;
    }
    return judgement;
}

} // namespace

Decoding decodeWithPhrases(Hearing &hearing, const QStringList &phrases, const TokenTable &tokens,
                           const std::stop_token &stop) {
    Decoding plain = decodeWithBeam(hearing, tokens, stop);
    if (plain.isBroken)
        return plain; // it has to be heard again in any case
    const std::vector<Word> plainWords = wordsOf(plain, tokens);
    std::vector<Phrase> listened;
    for (const QString &text : phrases) {
        Phrase phrase{tokens.encode(text), {}, lettersOf(text), soundsOf(text)};
        phrase.isName = text.toLower() != text;
        const auto inFront = tokens.encode(text.left(1).toUpper() + text.mid(1));
        if (!std::ranges::search(plain.tokens, inFront).empty())
            phrase.tokensInFront = inFront;
        phrase.likeness = replacedBy(phrase, plainWords).likeness;
        listened.push_back(std::move(phrase));
    }
    for (int search = 0; search < mostSearches; ++search) {
        PhraseTrie trie;
        for (std::size_t i = 0; i < listened.size(); ++i) {
            const Phrase &phrase = listened[i];
            if (phrase.likeness < leastLikeness || phrase.trust <= 0)
                continue;
            const auto gain = static_cast<float>(phrase.trust * reward(phrase.likeness));
            trie.add(phrase.tokens, static_cast<int>(i), gain);
            // Else that sentence would lose its capital, and the marks after it.
            trie.add(phrase.tokensInFront, static_cast<int>(i), gain);
        }
        if (trie.isEmpty())
            break;
        std::optional<Decoding> found =
            searchBeam(*hearing.decoder, hearing.mostTokens, trie, tokens, stop);
        if (!found)
            break;
        const Judgement judgement = judge(*found, plain, plainWords, listened, trie, tokens);
        if (judgement.isCutOff)
            break;
        if (judgement.wrong >= 0) {
            listened[static_cast<std::size_t>(judgement.wrong)].trust -= 0.5;
            continue;
        }
        if (!judgement.hasPhrases)
            break;
        found->firstFrameTime = hearing.firstFrameTime;
        return std::move(*found);
    }
    return plain;
}

} // namespace lorvane
