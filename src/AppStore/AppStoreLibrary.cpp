// What the user does with the library outside a dictation. Every change reaches the file through
// the autosave.

#include "AppStore/AppStore.h"

#include "Core/DateLabel.h"
#include "Core/Text.h"
#include "Platform/SavePanel.h"

#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace lorvane {

namespace {

/// What an export puts between two dictations.
constexpr auto exportSeparator = u"\n\n---\n\n";

template <class Record>
QList<Record> without(QList<Record> records, const QUuid &id) {
    records.removeIf([&id](const Record &record) { return record.id == id; });
    return records;
}

/// The whole history as plain text, newest dictation first.
QString exportedText(const QList<TranscriptRecord> &history) {
    QStringList blocks;
    for (const TranscriptRecord &record : history)
        blocks.append(dateLabel(record.createdAt) + u'\n' + record.text);
    return blocks.join(QStringView(exportSeparator));
}

/// Throws LocalizedError.
void writeAtomically(const QString &path, const QString &text) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        throw LocalizedError(file.errorString());
}

} // namespace

void AppStore::setHistory(QList<TranscriptRecord> history) {
    history_ = std::move(history);
    Q_EMIT historyChanged();
}

void AppStore::setVocabulary(QList<VocabularyEntry> vocabulary) {
    vocabulary_ = std::move(vocabulary);
    Q_EMIT vocabularyChanged();
}

void AppStore::setSnippets(QList<Snippet> snippets) {
    snippets_ = std::move(snippets);
    Q_EMIT snippetsChanged();
}

void AppStore::setScratchpad(QString scratchpad) {
    scratchpad_ = std::move(scratchpad);
    Q_EMIT scratchpadChanged();
}

void AppStore::setSettings(AppSettings settings) {
    settings_ = std::move(settings);
    Q_EMIT settingsChanged();
}

qint64 AppStore::totalWords() const {
    qint64 words = 0;
    for (const TranscriptRecord &record : history_)
        words += record.wordCount();
    return words;
}

double AppStore::totalDuration() const {
    double seconds = 0;
    for (const TranscriptRecord &record : history_)
        seconds += record.duration;
    return seconds;
}

void AppStore::copyTranscript(const QString &text) {
    systemIntegration_.copy(text);
    setStatusMessage(u"Copied to clipboard."_s);
}

void AppStore::deleteTranscript(const TranscriptRecord &record) {
    setHistory(without(history_, record.id));
}

void AppStore::deleteVocabulary(const VocabularyEntry &entry) {
    setVocabulary(without(vocabulary_, entry.id));
}

void AppStore::deleteSnippet(const Snippet &snippet) {
    setSnippets(without(snippets_, snippet.id));
}

void AppStore::clearHistory() { setHistory({}); }

void AppStore::exportHistory() {
    const std::optional<QString> path = ports_.savePanel.run(u"Lorvane History.txt"_s);
    if (!path)
        return;
    try {
        writeAtomically(*path, exportedText(history_));
        setStatusMessage(u"History exported."_s);
    } catch (const LocalizedError &error) {
        setErrorMessage(u"Export failed: "_s + error.localizedDescription());
    }
}

std::optional<QString> AppStore::saveVocabulary(const VocabularyEntry &entry) {
    if (const auto phrase = entry.conflictingPhrase(vocabulary_))
        return u"“"_s + *phrase +
               u"” already belongs to another name. Edit that entry or choose another variant."_s;
    // In contrast to phrases, preferred names that differ in case alone may stand side by side.
    const QString preferred = entry.preferredText();
    for (const VocabularyEntry &other : std::as_const(vocabulary_))
        if (other.id != entry.id && Text::equalsCanonically(other.preferredText(), preferred))
            return u"This preferred name already exists. Edit its entry to add more variants."_s;

    QList<VocabularyEntry> entries = vocabulary_;
    const auto old = std::ranges::find(entries, entry.id, &VocabularyEntry::id);
    if (old == entries.end())
        entries.append(entry);
    else
        *old = entry;
    setVocabulary(std::move(entries));
    return std::nullopt;
}

void AppStore::addVocabulary(const QString &phrase, const QString &replacement,
                             const QStringList &aliases) {
    if (Text::isBlank(phrase))
        return;
    if (const auto refusal = saveVocabulary(
            VocabularyEntry(Text::trimmed(phrase), Text::trimmed(replacement), aliases)))
        setErrorMessage(*refusal);
}

void AppStore::addSnippet(const QString &trigger, const QString &content) {
    if (Text::isBlank(trigger) || Text::isBlank(content))
        return;
    const Snippet snippet{.trigger = Text::trimmed(trigger), .content = Text::trimmed(content)};
    for (const Snippet &other : std::as_const(snippets_))
        if (Text::equalsCaseInsensitively(other.trigger, snippet.trigger)) {
            setErrorMessage(u"This snippet trigger already exists."_s);
            return;
        }
    setSnippets(QList<Snippet>(snippets_) << snippet);
}

} // namespace lorvane
