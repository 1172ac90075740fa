#pragma once

#include "AppStore/AppStore.h"
#include "Views/Kit/ListChange.h"
#include "Views/Kit/TextSearch.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QString>

#include <utility>

namespace lorvane {

/// A list of the library as far as it fits a search text. What stays in the list keeps its card,
/// and with it the keyboard focus, when something else comes or goes.
class SearchModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store READ store WRITE setStore NOTIFY storeChanged)
    /// Taken as it is, blanks included.
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY rowsChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    AppStore *store() const { return store_; }
    void setStore(AppStore *store);
    const QString &search() const { return search_; }
    void setSearch(const QString &search);
    bool isEmpty() const { return rowCount() == 0; }
    bool isSearching() const { return !search_.isEmpty(); }

Q_SIGNALS:
    void storeChanged();
    void searchChanged();
    /// After every change of the list, also one that leaves its length.
    void rowsChanged();

protected:
    /// Has `load` called on every change of what this lists.
    virtual void observe(AppStore &store) = 0;
    /// Takes the list out of the store.
    virtual void load() = 0;
    virtual void filter() = 0;

private:
    QPointer<AppStore> store_;
    QString search_;
};

/// The same over rows of one type, which has an `id`.
template <class Row>
class SearchRows : public SearchModel {
public:
    using SearchModel::SearchModel;

    int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }

protected:
    virtual bool fits(const Row &row, const TextSearch &search) const = 0;

    /// The rows that are shown.
    const QList<Row> &rows() const { return rows_; }
    bool hasRow(int row) const { return row >= 0 && row < rowCount(); }

    void setAll(QList<Row> all) {
        all_ = std::move(all);
        filter();
        if (!isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    }

    void filter() override {
        QList<Row> fitting;
        const TextSearch wanted(search());
        if (!isSearching()) {
            fitting = all_;
        } else {
            for (const Row &row : std::as_const(all_))
                if (fits(row, wanted))
                    fitting.append(row);
        }
        change(std::move(fitting));
        Q_EMIT rowsChanged();
    }

private:
    void change(QList<Row> after) {
        const ListChange change = ListChange::between(
            rows_, after, [](const Row &left, const Row &right) { return left.id == right.id; });
        const int first = static_cast<int>(change.first);
        if (change.removed > 0) {
            QList<Row> kept = after;
            kept.remove(change.first, change.inserted);
            beginRemoveRows({}, first, first + static_cast<int>(change.removed) - 1);
            rows_ = std::move(kept);
            endRemoveRows();
        }
        if (change.inserted > 0)
            beginInsertRows({}, first, first + static_cast<int>(change.inserted) - 1);
        rows_ = std::move(after);
        if (change.inserted > 0)
            endInsertRows();
    }

    QList<Row> all_;
    QList<Row> rows_;
};

} // namespace lorvane
