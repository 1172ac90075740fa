#include "Views/Dictation/HistoryModel.h"

#include "Views/Kit/Formatting.h"

namespace lorvane {

void HistoryModel::observe(AppStore &store) {
    connect(&store, &AppStore::historyChanged, this, &HistoryModel::load);
}

void HistoryModel::load() { setAll(store()->history()); }

bool HistoryModel::fits(const TranscriptRecord &record, const TextSearch &search) const {
    return search.isIn(record.text);
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const {
    if (!hasRow(index.row()))
        return {};
    const TranscriptRecord &record = at(index.row());
    switch (role) {
    case dateRole: return dateLabel(record.createdAt);
    case wordsRole: return wordsLabel(record);
    case durationRole: return u"%1s"_qs.arg(static_cast<qint64>(record.duration));
    case textRole: return record.text;
    default: return {};
    }
}

QHash<int, QByteArray> HistoryModel::roleNames() const {
    return {{dateRole, "date"},
            {wordsRole, "words"},
            {durationRole, "duration"},
            {textRole, "dictation"}};
}

QString HistoryModel::countLabel() const {
    const int count = rowCount();
    return QString::number(count) + (count == 1 ? u" dictation"_qs : u" dictations"_qs);
}

QString HistoryModel::emptyIcon() const {
    return isSearching() ? u"magnifyingglass"_qs : u"clock"_qs;
}

QString HistoryModel::emptyTitle() const {
    return isSearching() ? u"No matching thoughts."_qs : u"A fresh start."_qs;
}

QString HistoryModel::emptyMessage() const {
    return isSearching()
               ? u"Try a different word or clear the search to see every dictation."_qs
               : u"Completed dictations are saved here automatically. Start from Home or use "
                 "Control Option Space."_qs;
}

} // namespace lorvane
