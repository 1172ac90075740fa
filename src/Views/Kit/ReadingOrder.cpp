#include "Views/Kit/ReadingOrder.h"

#include <QKeyEvent>
#include <QQuickWindow>

#include <algorithm>

namespace lorvane {

void ReadingOrder::setContent(QQuickItem *content) {
    if (content_)
        content_->disconnect(this);
    content_ = content;
    if (content_) {
        connect(content_, &QQuickItem::windowChanged, this, &ReadingOrder::watch);
        connect(content_, &QQuickItem::childrenChanged, this, &ReadingOrder::watchItems);
        watchItems();
        watch(content_->window());
    }
    Q_EMIT contentChanged();
}

void ReadingOrder::watch(QQuickWindow *window) {
    if (window_)
        window_->removeEventFilter(this);
    window_ = window;
    if (window_)
        window_->installEventFilter(this);
    arrangeLater();
}

void ReadingOrder::watchItems() {
    for (QQuickItem *item : content_->childItems())
        connect(item, &QQuickItem::yChanged, this, &ReadingOrder::arrangeLater,
                Qt::UniqueConnection);
    arrangeLater();
}

bool ReadingOrder::eventFilter(QObject *, QEvent *event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
            arrange();
    }
    return false;
}

void ReadingOrder::arrangeLater() {
    if (std::exchange(isScheduled_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isScheduled_ = false;
            arrange();
        },
        Qt::QueuedConnection);
}

void ReadingOrder::arrange() {
    if (!content_)
        return;
    QList<QQuickItem *> items = content_->childItems();
    const auto above = [](const QQuickItem *left, const QQuickItem *right) {
        return left->y() < right->y();
    };
    if (std::is_sorted(items.cbegin(), items.cend(), above))
        return;
    std::stable_sort(items.begin(), items.end(), above);
    for (qsizetype i = 1; i < items.size(); ++i)
        items[i]->stackAfter(items[i - 1]);
}

} // namespace lorvane
