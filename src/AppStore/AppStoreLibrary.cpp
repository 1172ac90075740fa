// The library in memory, and when it is written.

#include "AppStore/AppStore.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {

namespace {

/// Continuous typing doesn't write the file until it pauses.
constexpr auto autosaveDelay = 250ms;

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

void AppStore::observeLibrary() {
    for (const auto change :
         {&AppStore::historyChanged, &AppStore::vocabularyChanged, &AppStore::snippetsChanged,
          &AppStore::scratchpadChanged, &AppStore::settingsChanged})
        connect(this, change, this, &AppStore::scheduleAutosave);
}

void AppStore::scheduleAutosave() {
    ports_.clock.cancelTimer(autosaveTimer_);
    const QPointer<AppStore> self(this);
    autosaveTimer_ = ports_.clock.callAfter(autosaveDelay, [self] {
        if (self)
            self->save();
    });
}

void AppStore::save() {
    if (!persistenceEnabled_ || !repository_)
        return;
    AppSnapshot snapshot;
    snapshot.history = history_;
    snapshot.vocabulary = vocabulary_;
    snapshot.snippets = snippets_;
    snapshot.scratchpad = scratchpad_;
    snapshot.settings = settings_;
    try {
        repository_->save(snapshot);
    } catch (const LocalizedError &error) {
        setErrorMessage(u"Could not save the library: "_s + error.localizedDescription());
    }
}

} // namespace lorvane
