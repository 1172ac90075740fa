#include "Views/Library/SnippetEditor.h"

#include "Core/Text.h"

#include <algorithm>

namespace lorvane {

SnippetEditorDraft::SnippetEditorDraft(const std::optional<Snippet> &snippet) {
    if (!snippet)
        return;
    snippetID = snippet->id;
    trigger = snippet->trigger;
    content = snippet->content;
}

void SnippetEditor::create() { setDraft(SnippetEditorDraft()); }

void SnippetEditor::edit(const Snippet &snippet) { setDraft(SnippetEditorDraft(snippet)); }

void SnippetEditor::cancel() {
    if (isOpen())
        setDraft(std::nullopt);
}

void SnippetEditor::save() {
    if (!canSave() || !store_)
        return;
    const QString trigger = Text::trimmed(draft_->trigger);
    QList<Snippet> snippets = store_->snippets();
    for (const Snippet &other : std::as_const(snippets)) {
        if (other.id != draft_->snippetID &&
            Text::equalsCaseInsensitively(other.trigger, trigger)) {
            setEditorError(u"This trigger phrase already exists. Choose another phrase."_qs);
            return;
        }
    }
    if (draft_->snippetID) {
        const auto edited =
            std::find_if(snippets.begin(), snippets.end(),
                         [&](const Snippet &snippet) { return snippet.id == draft_->snippetID; });
        if (edited == snippets.end()) {
            setEditorError(
                u"This snippet is no longer available. Close the editor and try again."_qs);
            return;
        }
        edited->trigger = trigger;
        edited->content = draft_->content;
    } else {
        snippets.append({.trigger = trigger, .content = draft_->content});
    }
    store_->setSnippets(std::move(snippets));
    setDraft(std::nullopt);
}

QString SnippetEditor::heading() const {
    return draft_ && draft_->snippetID ? u"Edit snippet"_qs : u"Create a snippet"_qs;
}

void SnippetEditor::setTrigger(const QString &trigger) {
    if (!isOpen() || draft_->trigger == trigger)
        return;
    draft_->trigger = trigger;
    Q_EMIT draftChanged();
}

void SnippetEditor::setContent(const QString &content) {
    if (!isOpen() || draft_->content == content)
        return;
    draft_->content = content;
    Q_EMIT draftChanged();
}

bool SnippetEditor::canSave() const {
    return isOpen() && !Text::isBlank(draft_->trigger) && !Text::isBlank(draft_->content);
}

void SnippetEditor::setDraft(std::optional<SnippetEditorDraft> draft) {
    draft_ = std::move(draft);
    setEditorError({});
    Q_EMIT draftChanged();
    Q_EMIT openChanged();
}

void SnippetEditor::setEditorError(const QString &error) {
    editorError_ = error;
    Q_EMIT editorErrorChanged();
}

} // namespace lorvane
