// The library file: when it is read, and when it is written.

#include "AppStore/AppStore.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace lorvane {

namespace {

/// Continuous typing doesn't write the file until it pauses.
constexpr auto autosaveDelay = 250ms;

} // namespace

void AppStore::loadLibrary() {
    try {
        repository_ = LocalRepository::applicationDefault();
        AppSnapshot snapshot = repository_->load();
        history_ = std::move(snapshot.history);
        vocabulary_ = std::move(snapshot.vocabulary);
        snippets_ = std::move(snapshot.snippets);
        scratchpad_ = std::move(snapshot.scratchpad);
        settings_ = std::move(snapshot.settings);
    } catch (const LocalizedError &error) {
        persistenceEnabled_ = false;
        setErrorMessage(u"Could not load the library: "_s + error.localizedDescription() +
                        u" Saving is disabled to preserve the existing file. "
                        "See README for recovery."_s);
    }
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
