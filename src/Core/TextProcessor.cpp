#include "Core/TextProcessor.h"

#include "Core/RegularExpression.h"
#include "Core/Text.h"

#include <QHash>

#include <algorithm>

namespace lorvane {
namespace {

/// A whole word has no letter, number or underscore of any script directly before or after it.
QString wholeWord(const QString &pattern) {
    return QStringLiteral("(?<![\\p{L}\\p{N}_])") + pattern + QStringLiteral("(?![\\p{L}\\p{N}_])");
}

QString replaceWholePhrase(const QString &text, const QString &phrase, const QString &replacement) {
    return RegularExpression(wholeWord(RegularExpression::escapedPattern(phrase)),
                             RegularExpression::Case::insensitive)
        .replacingMatches(text, RegularExpression::escapedTemplate(replacement));
}

QString removingFillers(const QString &text) {
    QString output = replaceWholePhrase(text, QStringLiteral("um"), QString());
    output = replaceWholePhrase(output, QStringLiteral("uh"), QString());
    output = RegularExpression(QStringLiteral("[ \\t]{2,}"))
                 .replacingMatches(output, QStringLiteral(" "));
    output = RegularExpression(QStringLiteral(" +([,.;!?])"))
                 .replacingMatches(output, QStringLiteral("$1"));
    return Text::trimmed(output);
}

/// The first snippet that the whole text is the trigger of.
const Snippet *triggered(const QString &text, const QList<Snippet> &snippets) {
    const QString key = Text::folded(text);
    const auto found = std::ranges::find_if(snippets, [&key](const Snippet &snippet) {
        return Text::folded(Text::trimmed(snippet.trigger)) == key;
    });
    return found == snippets.end() ? nullptr : &*found;
}

struct Replacement {
    QString phrase;
    QString text;
    qsizetype length;
};

/// Longest phrase first, so that it is tried first where several match; else in list order.
QList<Replacement> replacements(const QList<VocabularyEntry> &vocabulary) {
    QList<Replacement> pairs;
    for (const VocabularyEntry &entry : vocabulary) {
        for (const QString &phrase : entry.matchingPhrases())
            pairs.append({phrase, entry.preferredText(), Text::characterCount(phrase)});
    }
    std::ranges::stable_sort(pairs, std::ranges::greater{}, &Replacement::length);
    return pairs;
}

QString replacingVocabulary(const QString &text, const QList<VocabularyEntry> &vocabulary) {
    QList<Replacement> pairs = replacements(vocabulary);
    // At each word the engine tries one phrase after the other, so those that aren't in the text at
    // all, nearly all of a large dictionary, stay out of the pattern.
    const QString folded = Text::caseFolded(text);
    pairs.removeIf([&folded](const Replacement &pair) {
        return !folded.contains(Text::caseFolded(pair.phrase));
    });
    if (pairs.isEmpty())
        return text;
    QString alternatives;
    QHash<QString, const Replacement *> byPhrase;
    for (const Replacement &pair : pairs) {
        if (!alternatives.isEmpty())
            alternatives += u'|';
        alternatives += RegularExpression::escapedPattern(pair.phrase);
        const QString key = Text::caselessKey(pair.phrase);
        if (!byPhrase.contains(key))
            byPhrase.insert(key, &pair);
    }
    const RegularExpression pattern(wholeWord(QStringLiteral("(?:") + alternatives + u')'),
                                    RegularExpression::Case::insensitive);
    // One pass: what was put in is not looked at again.
    QString output;
    qsizetype done = 0;
    for (const RegularExpression::Range &match : pattern.matches(text)) {
        const QStringView heard = QStringView(text).sliced(match.start, match.length);
        const Replacement *pair = byPhrase.value(Text::caselessKey(heard));
        output += QStringView(text).sliced(done, match.start - done);
        output += pair ? QStringView(pair->text) : heard;
        done = match.start + match.length;
    }
    return output.append(QStringView(text).sliced(done));
}

QString punctuated(const QString &text) {
    QString output = Text::withUppercaseStart(text);
    if (Text::endsInLetterOrNumber(output))
        output += u'.';
    return output;
}

} // namespace

QString TextProcessor::process(const QString &text, const QList<VocabularyEntry> &vocabulary,
                               const QList<Snippet> &snippets, const AppSettings &settings) {
    QString output = Text::trimmed(text);
    if (settings.removeFillers)
        output = removingFillers(output);
    const Snippet *snippet = triggered(output, snippets);
    if (snippet && !Text::isBlank(snippet->content))
        return snippet->content;
    output = replacingVocabulary(output, vocabulary);
    return settings.smartPunctuation ? punctuated(output) : output;
}

} // namespace lorvane
