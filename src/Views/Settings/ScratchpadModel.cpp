#include "Views/Settings/ScratchpadModel.h"

#include "Core/Text.h"

namespace lorvane {

void ScratchpadModel::setStore(AppStore *store) {
    if (store_)
        store_->disconnect(this);
    store_ = store;
    if (store_)
        connect(store_, &AppStore::scratchpadChanged, this, &ScratchpadModel::textChanged);
    Q_EMIT storeChanged();
    Q_EMIT textChanged();
}

void ScratchpadModel::setText(const QString &text) {
    if (store_)
        store_->setScratchpad(text);
}

QString ScratchpadModel::wordCount() const {
    const qsizetype count = Text::wordCount(text());
    return u"%1 %2"_qs.arg(QString::number(count), count == 1 ? u"word"_qs : u"words"_qs);
}

} // namespace lorvane
