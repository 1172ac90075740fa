#include "Views/Library/DictionaryModel.h"

#include "Views/Kit/LocalizedOrder.h"

#include <algorithm>

namespace lorvane {

void DictionaryModel::observe(AppStore &store) {
    connect(&store, &AppStore::vocabularyChanged, this, &DictionaryModel::load);
}

void DictionaryModel::load() {
    const QList<VocabularyEntry> &entries = store()->vocabulary();
    QStringList names;
    for (const VocabularyEntry &entry : entries)
        names.append(entry.preferredText());
    QList<DictionaryRow> rows;
    for (const qsizetype i : localizedOrder(names))
        rows.append({entries[i].id, entries[i], names[i], entries[i].matchingPhrases()});
    setAll(rows);
}

bool DictionaryModel::fits(const DictionaryRow &row, const TextSearch &search) const {
    return search.isIn(row.preferredText) ||
           std::any_of(row.phrases.cbegin(), row.phrases.cend(),
                       [&](const QString &phrase) { return search.isIn(phrase); });
}

QVariant DictionaryModel::data(const QModelIndex &index, int role) const {
    if (!hasRow(index.row()))
        return {};
    const DictionaryRow &row = at(index.row());
    switch (role) {
    case preferredTextRole: return row.preferredText;
    case recognizesRole: return QString(u"Recognizes: "_qs + row.phrases.join(u" · "_qs));
    default: return {};
    }
}

QHash<int, QByteArray> DictionaryModel::roleNames() const {
    return {{preferredTextRole, "preferredText"}, {recognizesRole, "recognizes"}};
}

QString DictionaryModel::emptyTitle() const {
    return isSearching() ? u"No matching words."_qs : u"Make it your language."_qs;
}

QString DictionaryModel::emptyMessage() const {
    return isSearching() ? u"Try another search or add a name."_qs
                         : u"Add a preferred name or phrase, then give it the different spellings "
                           "you see in your transcriptions."_qs;
}

void DictionaryModel::edit(int row, DictionaryEditor *editor) {
    if (hasRow(row))
        editor->edit(at(row).entry);
}

} // namespace lorvane
