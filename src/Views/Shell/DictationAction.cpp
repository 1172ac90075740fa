#include "Views/Shell/DictationAction.h"

#include "AppStore/AppStore.h"

namespace lorvane {

DictationAction::DictationAction(AppStore &store, QObject *parent)
    : QAction(parent), store_(store) {
    connect(this, &QAction::triggered, &store_, &AppStore::toggleRecording);
    connect(&store_, &AppStore::dictationChanged, this, &DictationAction::refresh);
    connect(&store_, &AppStore::isBusyChanged, this, &DictationAction::refresh);
    refresh();
}

void DictationAction::refresh() {
    setText(store_.isRecording() ? u"Finish Dictation"_qs : u"Start Dictation"_qs);
    setEnabled(!store_.isBusy());
}

} // namespace lorvane
