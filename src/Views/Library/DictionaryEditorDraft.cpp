#include "Views/Library/DictionaryEditorDraft.h"

namespace lorvane {

DictionaryEditorDraft::DictionaryEditorDraft(const std::optional<VocabularyEntry> &entry) {
    if (!entry) {
        variants.append(DictionaryVariantInput());
        return;
    }
    entryID = entry->id;
    for (const QString &phrase : entry->matchingPhrases())
        variants.append({.text = phrase});
    replacement = entry->preferredText();
}

} // namespace lorvane
