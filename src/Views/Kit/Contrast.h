#pragma once

#include <QDBusVariant>
#include <QHash>
#include <QObject>

namespace lorvane {

/// Whether the user has asked the desktop for more contrast, as its settings portal tells. Without
/// a portal nobody has. Main thread only; the bus is never waited for.
class Contrast : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isHigh READ isHigh NOTIFY isHighChanged)

public:
    explicit Contrast(QObject *parent = nullptr);

    bool isHigh() const { return isHigh_; }

Q_SIGNALS:
    void isHighChanged();

private Q_SLOTS:
    void take(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void ask(const QString &space, const QString &key);

    QHash<QString, bool> wishes_; ///< by the key of the setting
    bool isHigh_ = false;
};

} // namespace lorvane
