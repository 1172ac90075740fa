#pragma once

#include "AppStore/AppStore.h"
#include "Views/Library/DictionaryEditorDraft.h"

#include <QAbstractListModel>
#include <QPointer>

#include <optional>

namespace lorvane {

/// The sheet in which one dictionary entry is made or changed: the draft while there is one, and
/// how it gets into the library. As a list it has the variants.
class DictionaryEditor : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store MEMBER store_ NOTIFY storeChanged)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY openChanged)
    Q_PROPERTY(QString heading READ heading NOTIFY openChanged)
    Q_PROPERTY(QString replacement READ replacement WRITE setReplacement NOTIFY draftChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY draftChanged)
    Q_PROPERTY(bool canRemoveVariant READ canRemoveVariant NOTIFY draftChanged)
    Q_PROPERTY(int variantsHeight READ variantsHeight NOTIFY draftChanged)
    Q_PROPERTY(QString editorError READ editorError NOTIFY editorErrorChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    /// Opens the sheet on a new entry.
    Q_INVOKABLE void create();
    /// Opens the sheet on a copy of the entry.
    void edit(const VocabularyEntry &entry);
    /// Closes the sheet and forgets the draft.
    Q_INVOKABLE void cancel();
    /// Puts the draft into the library and closes the sheet, or says in `editorError` why not. A
    /// blank name does nothing.
    Q_INVOKABLE void save();

    Q_INVOKABLE void addVariant();
    /// One line is always kept.
    Q_INVOKABLE void removeVariant(int row);
    Q_INVOKABLE void setVariant(int row, const QString &text);

    bool isOpen() const { return draft_.has_value(); }
    QString heading() const;
    QString replacement() const { return draft_ ? draft_->replacement : QString(); }
    void setReplacement(const QString &replacement);
    bool canSave() const;
    bool canRemoveVariant() const { return rowCount() != 1; }
    /// Of the list on the sheet, which scrolls from the sixth line on.
    int variantsHeight() const;
    /// Null without an error. It stays until the sheet closes or the next save.
    const QString &editorError() const { return editorError_; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void storeChanged();
    void openChanged();
    void draftChanged();
    void editorErrorChanged();

private:
    bool hasRow(int row) const { return row >= 0 && row < rowCount(); }
    void setDraft(std::optional<DictionaryEditorDraft> draft);
    void setEditorError(const QString &error);
    bool isStillThere(const QUuid &entryID) const;

    QPointer<AppStore> store_;
    std::optional<DictionaryEditorDraft> draft_;
    QString editorError_;
};

} // namespace lorvane
