#pragma once

#include "Views/Kit/SearchModel.h"
#include "Views/Library/DictionaryEditor.h"

#include <QStringList>

namespace lorvane {

/// A dictionary entry with what is derived from it, once for each change of the dictionary.
struct DictionaryRow {
    QUuid id;
    VocabularyEntry entry;
    QString preferredText;
    QStringList phrases;
};

/// What the Dictionary page shows: the entries whose preferred text or a phrase of which has the
/// search text, in the alphabet's order.
class DictionaryModel : public SearchRows<DictionaryRow> {
    Q_OBJECT
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY searchChanged)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY searchChanged)

public:
    enum Role { preferredTextRole = Qt::UserRole, recognizesRole };

    using SearchRows::SearchRows;

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // What stands in place of an empty list.
    QString emptyTitle() const;
    QString emptyMessage() const;

    Q_INVOKABLE void edit(int row, lorvane::DictionaryEditor *editor);

protected:
    void observe(AppStore &store) override;
    void load() override;
    bool fits(const DictionaryRow &row, const TextSearch &search) const override;
    QString textToCopy(const DictionaryRow &row) const override { return row.preferredText; }
    void removeFrom(AppStore &store, const DictionaryRow &row) override {
        store.deleteVocabulary(row.entry);
    }
};

} // namespace lorvane
