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

    /// Puts what the row stands for on the pasteboard.
    Q_INVOKABLE virtual void copy(int row) = 0;
    /// Deletes it from the library.
    Q_INVOKABLE virtual void remove(int row) = 0;

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
        return parent.isValid() ? 0 : static_cast<int>(shown_.size());
    }

    void copy(int row) override {
        if (hasRow(row))
            store()->copyTranscript(textToCopy(at(row)));
    }
    void remove(int row) override {
        if (!hasRow(row))
            return;
        const Row removed = at(row); // the rows change on the way
        removeFrom(*store(), removed);
    }

protected:
    virtual bool fits(const Row &row, const TextSearch &search) const = 0;
    virtual QString textToCopy(const Row &row) const = 0;
    virtual void removeFrom(AppStore &store, const Row &row) = 0;

    bool hasRow(int row) const { return row >= 0 && row < rowCount(); }
    /// One of those that are shown.
    const Row &at(int row) const { return all_.at(shown_.at(row)); }

    void setAll(const QList<Row> &all) {
        show(all);
        if (!isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    }

    void filter() override { show(all_); }

private:
    void show(const QList<Row> &all) {
        change(all, fitting(all));
        Q_EMIT rowsChanged();
    }

    QList<qint32> fitting(const QList<Row> &all) const {
        QList<qint32> fitting;
        const TextSearch wanted(search());
        for (qint32 i = 0; i < all.size(); ++i)
            if (!isSearching() || fits(all.at(i), wanted))
                fitting.append(i);
        return fitting;
    }

    void change(QList<Row> all, QList<qint32> shown) {
        const ListChange change =
            ListChange::between(shown_, shown, [&](qint32 before, qint32 after) {
                return all_.at(before).id == all.at(after).id;
            });
        const int first = static_cast<int>(change.first);
        if (change.removed > 0) {
            beginRemoveRows({}, first, first + static_cast<int>(change.removed) - 1);
            shown_.remove(change.first, change.removed);
            endRemoveRows();
        }
        if (change.inserted > 0)
            beginInsertRows({}, first, first + static_cast<int>(change.inserted) - 1);
        all_ = std::move(all);
        shown_ = std::move(shown);
        if (change.inserted > 0)
            endInsertRows();
    }

    QList<Row> all_;
    QList<qint32> shown_; ///< indices of `all_`: a search of a long list copies none of it
};

} // namespace lorvane
