#include "Views/Kit/SearchModel.h"

namespace lorvane {

void SearchModel::setStore(AppStore *store) {
    if (store_)
        store_->disconnect(this);
    store_ = store;
    if (store_) {
        observe(*store_);
        load();
    }
    Q_EMIT storeChanged();
}

void SearchModel::setSearch(const QString &search) {
    if (search == search_)
        return;
    search_ = search;
    Q_EMIT searchChanged();
    filter();
}

} // namespace lorvane
