#include "Views/Kit/LineSpacing.h"

#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace lorvane {

void LineSpacing::setDocument(QQuickTextDocument *document) {
    document_ = document;
    if (document_ && document_->textDocument())
        connect(document_->textDocument(), &QTextDocument::contentsChanged, this,
                &LineSpacing::apply);
    apply();
    Q_EMIT changed();
}

void LineSpacing::setSpacing(double spacing) {
    spacing_ = spacing;
    apply();
    Q_EMIT changed();
}

void LineSpacing::apply() {
    // A new format is itself a change of the contents.
    if (isApplying_ || !document_ || !document_->textDocument())
        return;
    const QScopedValueRollback guard(isApplying_, true);
    QTextDocument *text = document_->textDocument();
    QTextBlockFormat format;
    format.setLineHeight(spacing_, QTextBlockFormat::LineDistanceHeight);
    QTextCursor cursor(text);
    cursor.select(QTextCursor::Document);
    if (cursor.blockFormat().lineHeightType() != QTextBlockFormat::LineDistanceHeight ||
        text->lastBlock().blockFormat().lineHeight() != spacing_)
        cursor.mergeBlockFormat(format);
}

} // namespace lorvane
