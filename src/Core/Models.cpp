#include "Core/Models.h"

#include "Core/Text.h"

#include <QSet>

#include <algorithm>

namespace lorvane {

qsizetype TranscriptRecord::wordCount() const { return Text::wordCount(text); }

bool TranscriptRecord::operator==(const TranscriptRecord &other) const {
    return id == other.id && createdAt == other.createdAt &&
           Text::equalsCanonically(text, other.text) && duration == other.duration;
}

VocabularyEntry::VocabularyEntry(QString phrase_, QString replacement_, const QStringList &aliases_,
                                 QUuid id_)
    : id(id_),
      phrase(std::move(phrase_)),
      replacement(std::move(replacement_)),
      aliases(normalizedPhrases(aliases_)) {
    aliases.removeIf(
        [this](const QString &alias) { return Text::equalsCaseInsensitively(alias, phrase); });
}

QString VocabularyEntry::preferredText() const {
    return replacement.isEmpty() ? phrase : replacement;
}

QStringList VocabularyEntry::matchingPhrases() const {
    return normalizedPhrases(QStringList(phrase) + aliases);
}

std::optional<QString>
VocabularyEntry::conflictingPhrase(const QList<VocabularyEntry> &entries) const {
    QSet<QString> claimed;
    for (const VocabularyEntry &entry : entries) {
        if (entry.id == id)
            continue;
        for (const QString &claim : entry.matchingPhrases())
            claimed.insert(Text::caselessKey(claim));
    }
    for (const QString &own : matchingPhrases()) {
        if (claimed.contains(Text::caselessKey(own)))
            return own;
    }
    return std::nullopt;
}

QStringList VocabularyEntry::normalizedPhrases(const QStringList &phrases) {
    QStringList result;
    QSet<QString> seen;
    for (const QString &phrase : phrases) {
        const QString trimmed = Text::trimmed(phrase);
        const QString key = Text::caselessKey(trimmed);
        if (trimmed.isEmpty() || seen.contains(key))
            continue;
        seen.insert(key);
        result.append(trimmed);
    }
    return result;
}

QStringList VocabularyEntry::recognitionHints(const QList<VocabularyEntry> &entries) {
    QStringList hints;
    for (const VocabularyEntry &entry : entries)
        hints.append(entry.preferredText());
    for (const VocabularyEntry &entry : entries)
        hints.append(entry.matchingPhrases());
    return normalizedPhrases(hints);
}

QList<VocabularyEntry> VocabularyEntry::consolidated(const QList<VocabularyEntry> &entries) {
    QList<VocabularyEntry> result;
    QStringList targets; // of each entry in the result
    for (const VocabularyEntry &entry : entries) {
        const QString target = Text::canonicalKey(entry.preferredText());
        const qsizetype index = targets.indexOf(target);
        if (index < 0) {
            targets.append(target);
            result.append(entry);
            continue;
        }
        VocabularyEntry &kept = result[index];
        QStringList phrases = normalizedPhrases(kept.matchingPhrases() + entry.matchingPhrases());
        if (phrases.isEmpty())
            continue;
        kept.phrase = phrases.takeFirst();
        kept.aliases = phrases;
        targets[index] = Text::canonicalKey(kept.preferredText());
    }
    return result;
}

bool VocabularyEntry::operator==(const VocabularyEntry &other) const {
    return id == other.id && Text::equalsCanonically(phrase, other.phrase) &&
           Text::equalsCanonically(replacement, other.replacement) &&
           std::ranges::equal(aliases, other.aliases, Text::equalsCanonically);
}

bool Snippet::operator==(const Snippet &other) const {
    return id == other.id && Text::equalsCanonically(trigger, other.trigger) &&
           Text::equalsCanonically(content, other.content);
}

bool AppSettings::operator==(const AppSettings &other) const {
    return Text::equalsCanonically(languageIdentifier, other.languageIdentifier) &&
           autoPaste == other.autoPaste && removeFillers == other.removeFillers &&
           smartPunctuation == other.smartPunctuation;
}

bool AppSnapshot::operator==(const AppSnapshot &other) const {
    return schemaVersion == other.schemaVersion && history == other.history &&
           vocabulary == other.vocabulary && snippets == other.snippets &&
           Text::equalsCanonically(scratchpad, other.scratchpad) && settings == other.settings;
}

} // namespace lorvane
