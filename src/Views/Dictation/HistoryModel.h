#pragma once

#include "Views/Kit/SearchModel.h"

namespace lorvane {

/// What the History page shows: the saved dictations whose text has the search text, in the order
/// of the store.
class HistoryModel : public SearchRows<TranscriptRecord> {
    Q_OBJECT
    Q_PROPERTY(bool hasHistory READ hasHistory NOTIFY rowsChanged)
    Q_PROPERTY(QString countLabel READ countLabel NOTIFY rowsChanged)
    Q_PROPERTY(QString emptyIcon READ emptyIcon NOTIFY searchChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY searchChanged)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY searchChanged)

public:
    enum Role { dateRole = Qt::UserRole, wordsRole, durationRole, textRole };

    using SearchRows::SearchRows;

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Whether there is anything to export or delete, found or not.
    bool hasHistory() const { return store() && !store()->history().isEmpty(); }
    /// How many are shown.
    QString countLabel() const;

    // What stands in place of an empty list.
    QString emptyIcon() const;
    QString emptyTitle() const;
    QString emptyMessage() const;

protected:
    void observe(AppStore &store) override;
    void load() override;
    bool fits(const TranscriptRecord &record, const TextSearch &search) const override;
    QString textToCopy(const TranscriptRecord &row) const override { return row.text; }
    void removeFrom(AppStore &store, const TranscriptRecord &row) override {
        store.deleteTranscript(row);
    }
};

} // namespace lorvane
