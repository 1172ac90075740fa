#include "Views/Library/DictionaryEditor.h"

#include "Core/Text.h"

#include <algorithm>

namespace lorvane {

void DictionaryEditor::create() { setDraft(DictionaryEditorDraft()); }

void DictionaryEditor::edit(const VocabularyEntry &entry) {
    setDraft(DictionaryEditorDraft(entry));
}

void DictionaryEditor::cancel() {
    if (isOpen())
        setDraft(std::nullopt);
}

void DictionaryEditor::save() {
    if (!canSave() || !store_)
        return;
    if (draft_->entryID && !isStillThere(*draft_->entryID)) {
        setEditorError(u"This entry is no longer available. Close the editor and try again."_qs);
        return;
    }
    QStringList texts;
    for (const DictionaryVariantInput &variant : std::as_const(draft_->variants))
        texts.append(variant.text);
    QStringList variants = VocabularyEntry::normalizedPhrases(texts);
    const QString replacement = Text::trimmed(draft_->replacement);
    const QString phrase = variants.isEmpty() ? replacement : variants.takeFirst();
    const VocabularyEntry entry(phrase, replacement, variants,
                                draft_->entryID.value_or(QUuid::createUuid()));
    if (const auto refusal = store_->saveVocabulary(entry))
        setEditorError(*refusal);
    else
        setDraft(std::nullopt);
}

bool DictionaryEditor::isStillThere(const QUuid &entryID) const {
    const QList<VocabularyEntry> &entries = store_->vocabulary();
    return std::any_of(entries.cbegin(), entries.cend(),
                       [&](const VocabularyEntry &entry) { return entry.id == entryID; });
}

void DictionaryEditor::addVariant() {
    if (!isOpen())
        return;
    beginInsertRows({}, rowCount(), rowCount());
    draft_->variants.append(DictionaryVariantInput());
    endInsertRows();
    Q_EMIT draftChanged();
}

void DictionaryEditor::removeVariant(int row) {
    if (!hasRow(row) || !canRemoveVariant())
        return;
    beginRemoveRows({}, row, row);
    draft_->variants.removeAt(row);
    endRemoveRows();
    Q_EMIT draftChanged();
}

void DictionaryEditor::setVariant(int row, const QString &text) {
    if (!hasRow(row) || draft_->variants[row].text == text)
        return;
    draft_->variants[row].text = text;
    Q_EMIT dataChanged(index(row), index(row));
}

QString DictionaryEditor::heading() const {
    return draft_ && draft_->entryID ? u"Edit name and variants"_qs
                                     : u"One name. Many ways to hear it."_qs;
}

void DictionaryEditor::setReplacement(const QString &replacement) {
    if (!isOpen() || draft_->replacement == replacement)
        return;
    draft_->replacement = replacement;
    Q_EMIT draftChanged();
}

bool DictionaryEditor::canSave() const { return isOpen() && !Text::isBlank(draft_->replacement); }

int DictionaryEditor::variantsHeight() const { return std::min(200, 36 * rowCount()); }

int DictionaryEditor::rowCount(const QModelIndex &parent) const {
    return draft_ && !parent.isValid() ? static_cast<int>(draft_->variants.size()) : 0;
}

QVariant DictionaryEditor::data(const QModelIndex &index, int role) const {
    if (!hasRow(index.row()) || role != Qt::EditRole)
        return {};
    return draft_->variants[index.row()].text;
}

QHash<int, QByteArray> DictionaryEditor::roleNames() const { return {{Qt::EditRole, "variant"}}; }

void DictionaryEditor::setDraft(std::optional<DictionaryEditorDraft> draft) {
    beginResetModel();
    draft_ = std::move(draft);
    endResetModel();
    setEditorError({});
    Q_EMIT draftChanged();
    Q_EMIT openChanged();
}

void DictionaryEditor::setEditorError(const QString &error) {
    editorError_ = error;
    Q_EMIT editorErrorChanged();
}

} // namespace lorvane
