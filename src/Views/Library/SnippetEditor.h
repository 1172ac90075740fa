#pragma once

#include "AppStore/AppStore.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUuid>

#include <optional>

namespace lorvane {

/// What the snippets' editor works on: a copy, so that the library changes only when it is saved.
struct SnippetEditorDraft {
    /// A draft of the snippet, or, without one, of a new snippet.
    explicit SnippetEditorDraft(const std::optional<Snippet> &snippet = std::nullopt);

    QUuid id = QUuid::createUuid();
    std::optional<QUuid> snippetID; ///< absent for a new snippet
    QString trigger;
    QString content;
};

/// The sheet in which one snippet is made or changed: the draft while there is one, and how it gets
/// into the library.
class SnippetEditor : public QObject {
    Q_OBJECT
    Q_PROPERTY(lorvane::AppStore *store MEMBER store_ NOTIFY storeChanged)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY openChanged)
    Q_PROPERTY(QString heading READ heading NOTIFY openChanged)
    Q_PROPERTY(QString trigger READ trigger WRITE setTrigger NOTIFY draftChanged)
    Q_PROPERTY(QString content READ content WRITE setContent NOTIFY draftChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY draftChanged)
    Q_PROPERTY(QString editorError READ editorError NOTIFY editorErrorChanged)

public:
    using QObject::QObject;

    /// Opens the sheet on a new snippet.
    Q_INVOKABLE void create();
    /// Opens the sheet on a copy of the snippet.
    void edit(const Snippet &snippet);
    /// Closes the sheet and forgets the draft.
    Q_INVOKABLE void cancel();
    /// Puts the draft into the library and closes the sheet, or says in `editorError` why not. A
    /// blank trigger or content does nothing.
    Q_INVOKABLE void save();

    bool isOpen() const { return draft_.has_value(); }
    QString heading() const;
    QString trigger() const { return draft_ ? draft_->trigger : QString(); }
    void setTrigger(const QString &trigger);
    QString content() const { return draft_ ? draft_->content : QString(); }
    void setContent(const QString &content);
    bool canSave() const;
    /// Null without an error. It stays until the sheet closes or the next save.
    const QString &editorError() const { return editorError_; }

Q_SIGNALS:
    void storeChanged();
    void openChanged();
    void draftChanged();
    void editorErrorChanged();

private:
    void setDraft(std::optional<SnippetEditorDraft> draft);
    void setEditorError(const QString &error);

    QPointer<AppStore> store_;
    std::optional<SnippetEditorDraft> draft_;
    QString editorError_;
};

} // namespace lorvane
