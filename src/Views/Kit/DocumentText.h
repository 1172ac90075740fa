#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QString>

namespace lorvane {

/// The text of a text edit, as typed: Qt Quick's own property turns no-break spaces into spaces.
class DocumentText : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickTextDocument *document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)

public:
    using QObject::QObject;

    QQuickTextDocument *document() const { return document_; }
    void setDocument(QQuickTextDocument *document);
    QString text() const { return text_; }
    /// Leaves the edit and its cursor alone if this is what it holds already.
    void setText(const QString &text);

Q_SIGNALS:
    void documentChanged();
    void textChanged();
    /// The user has changed the text.
    void edited();

private:
    void show();
    void read();

    QPointer<QQuickTextDocument> document_;
    QString text_;
    QString contents_; ///< what the document made of the text
    bool isShowing_ = false;
};

} // namespace lorvane
