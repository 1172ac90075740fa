#pragma once

#include "Views/Kit/SearchModel.h"
#include "Views/Library/SnippetEditor.h"

namespace lorvane {

/// What the Snippets page shows: the snippets whose trigger or content has the search text, in the
/// alphabet's order.
class SnippetsModel : public SearchRows<Snippet> {
    Q_OBJECT
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY searchChanged)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY searchChanged)

public:
    enum Role { triggerRole = Qt::UserRole, contentRole };

    using SearchRows::SearchRows;

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // What stands in place of an empty list.
    QString emptyTitle() const;
    QString emptyMessage() const;

    Q_INVOKABLE void edit(int row, lorvane::SnippetEditor *editor);

protected:
    void observe(AppStore &store) override;
    void load() override;
    bool fits(const Snippet &snippet, const TextSearch &search) const override;
    QString textToCopy(const Snippet &row) const override { return row.content; }
    void removeFrom(AppStore &store, const Snippet &row) override { store.deleteSnippet(row); }
};

} // namespace lorvane
