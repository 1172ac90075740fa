#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace lorvane {

/// The plain records of the library. They are values: copied, never shared, told apart in a list by
/// `id`. Two of them are equal when all stored fields are, strings by canonical equivalence.

/// One saved dictation.
struct TranscriptRecord {
    QUuid id = QUuid::createUuid();
    QDateTime createdAt = QDateTime::currentDateTimeUtc();
    QString text;
    double duration = 0; ///< seconds of audio

    qsizetype wordCount() const;

    bool operator==(const TranscriptRecord &other) const;
};

/// One dictionary entry: the text to produce, and the heard phrases that produce it.
struct VocabularyEntry {
    QUuid id;
    QString phrase;
    QString replacement; ///< empty: the entry produces its own phrase
    QStringList aliases;

    /// `phrase` and `replacement` are stored as given; `aliases` normalised, without the phrase.
    VocabularyEntry(QString phrase, QString replacement, const QStringList &aliases = {},
                    QUuid id = QUuid::createUuid());

    /// The text that the entry produces.
    QString preferredText() const;

    /// All the phrases of the entry, normalised, `phrase` first.
    QStringList matchingPhrases() const;

    /// The first of this entry's phrases that an entry of another `id` also claims.
    std::optional<QString> conflictingPhrase(const QList<VocabularyEntry> &entries) const;

    /// Trimmed, without blanks and without caseless repetitions; the first spelling wins.
    static QStringList normalizedPhrases(const QStringList &phrases);

    /// What to tell a recogniser to listen for, in the order of priority: all preferred texts, then
    /// all phrases.
    static QStringList recognitionHints(const QList<VocabularyEntry> &entries);

    /// The entries with those that produce the same text merged into the first of them.
    static QList<VocabularyEntry> consolidated(const QList<VocabularyEntry> &entries);

    bool operator==(const VocabularyEntry &other) const;
};

/// A named piece of text, which a dictation of the trigger alone expands to.
struct Snippet {
    QUuid id = QUuid::createUuid();
    QString trigger;
    QString content;

    bool operator==(const Snippet &other) const;
};

struct AppSettings {
    QString languageIdentifier = QStringLiteral("en-AU"); ///< a locale identifier
    bool autoPaste = false; ///< governs recordings that the button started
    bool removeFillers = true;
    bool smartPunctuation = true;

    bool operator==(const AppSettings &other) const;
};

/// The whole library.
struct AppSnapshot {
    static constexpr qint64 currentSchemaVersion = 2;

    qint64 schemaVersion = currentSchemaVersion;
    QList<TranscriptRecord> history = {};
    QList<VocabularyEntry> vocabulary = {};
    QList<Snippet> snippets = {};
    QString scratchpad = {};
    AppSettings settings = {};

    bool operator==(const AppSnapshot &other) const;
};

} // namespace lorvane
