#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>

namespace lorvane {

/// Puts `spacing` logical pixels between the lines of a text edit, which Qt Quick can't.
class LineSpacing : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickTextDocument *document READ document WRITE setDocument NOTIFY changed)
    Q_PROPERTY(double spacing READ spacing WRITE setSpacing NOTIFY changed)

public:
    using QObject::QObject;

    QQuickTextDocument *document() const { return document_; }
    void setDocument(QQuickTextDocument *document);
    double spacing() const { return spacing_; }
    void setSpacing(double spacing);

Q_SIGNALS:
    void changed();

private:
    void apply();

    QPointer<QQuickTextDocument> document_;
    double spacing_ = 0;
    bool isApplying_ = false;
};

} // namespace lorvane
