#include "Views/Library/SnippetsModel.h"

#include "Views/Kit/LocalizedOrder.h"

namespace lorvane {

void SnippetsModel::observe(AppStore &store) {
    connect(&store, &AppStore::snippetsChanged, this, &SnippetsModel::load);
}

void SnippetsModel::load() {
    const QList<Snippet> &snippets = store()->snippets();
    QStringList triggers;
    for (const Snippet &snippet : snippets)
        triggers.append(snippet.trigger);
    QList<Snippet> sorted;
    for (const qsizetype i : localizedOrder(triggers))
        sorted.append(snippets[i]);
    setAll(sorted);
}

bool SnippetsModel::fits(const Snippet &snippet, const TextSearch &search) const {
    return search.isIn(snippet.trigger) || search.isIn(snippet.content);
}

QVariant SnippetsModel::data(const QModelIndex &index, int role) const {
    if (!hasRow(index.row()))
        return {};
    const Snippet &snippet = at(index.row());
    switch (role) {
    case triggerRole: return snippet.trigger;
    case contentRole: return snippet.content;
    default: return {};
    }
}

QHash<int, QByteArray> SnippetsModel::roleNames() const {
    return {{triggerRole, "trigger"}, {contentRole, "snippetContent"}};
}

QString SnippetsModel::emptyTitle() const {
    return isSearching() ? u"No matching snippets."_qs : u"A shortcut for your voice."_qs;
}

QString SnippetsModel::emptyMessage() const {
    return isSearching() ? u"Try searching for a trigger phrase or part of its text."_qs
                         : u"Try a phrase like “my signature” and pair it with your full sign-off. "
                           "Dictate the phrase on its own to expand it."_qs;
}

void SnippetsModel::edit(int row, SnippetEditor *editor) {
    if (hasRow(row))
        editor->edit(at(row));
}

} // namespace lorvane
