#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>

namespace lorvane {

/// Keeps the items of a list in the order in which they stand on the page, for Tab and for screen
/// readers: a list that makes and reuses items while it scrolls has them in the order of their
/// making.
class ReadingOrder : public QObject {
    Q_OBJECT
    /// What the items are children of.
    Q_PROPERTY(QQuickItem *content READ content WRITE setContent NOTIFY contentChanged)

public:
    using QObject::QObject;

    QQuickItem *content() const { return content_; }
    void setContent(QQuickItem *content);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void contentChanged();

private:
    void watch(QQuickWindow *window);
    void watchItems();
    void arrangeLater();
    void arrange();

    QPointer<QQuickItem> content_;
    QPointer<QQuickWindow> window_;
    bool isScheduled_ = false;
};

} // namespace lorvane
