#include "Views/Kit/DocumentText.h"

#include <QScopedValueRollback>
#include <QTextDocument>

#include <algorithm>

namespace lorvane {

namespace {

/// The document's own characters for the ends of blocks, lines and frames.
bool isLineBreak(QChar character) {
    return character == QChar::ParagraphSeparator || character == QChar::LineSeparator ||
           character == QChar(0xfdd0) || character == QChar(0xfdd1);
}

QString contents(const QTextDocument &document) {
    QString text = document.toRawText();
    std::replace_if(text.begin(), text.end(), isLineBreak, u'\n');
    return text;
}

} // namespace

void DocumentText::setDocument(QQuickTextDocument *document) {
    if (document_ && document_->textDocument())
        document_->textDocument()->disconnect(this);
    document_ = document;
    if (document_ && document_->textDocument())
        connect(document_->textDocument(), &QTextDocument::contentsChanged, this,
                &DocumentText::read);
    show();
    Q_EMIT documentChanged();
}

void DocumentText::setText(const QString &text) {
    if (text == text_)
        return;
    text_ = text;
    show();
    Q_EMIT textChanged();
}

void DocumentText::show() {
    if (!document_ || !document_->textDocument())
        return;
    const QScopedValueRollback guard(isShowing_, true);
    document_->textDocument()->setPlainText(text_);
    contents_ = contents(*document_->textDocument());
}

void DocumentText::read() {
    if (isShowing_)
        return;
    QString text = contents(*document_->textDocument());
    // A change of the format is none of the text.
    if (text == contents_)
        return;
    contents_ = text;
    text_ = text;
    Q_EMIT textChanged();
    Q_EMIT edited();
}

} // namespace lorvane
