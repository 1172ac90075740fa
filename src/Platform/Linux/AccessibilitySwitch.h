#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>

#include <optional>

namespace lorvane {

/// Whether the desktop has its accessibility bus switched on: org.a11y.Status of at-spi2-core. The
/// one who starts that bus tells of each change, so that the answer is here when it is asked for;
/// only the first may take a fifth of a second. Main thread only.
class AccessibilitySwitch : public QObject {
    Q_OBJECT

public:
    /// Asks ahead, and doesn't wait.
    explicit AccessibilitySwitch(QDBusConnection sessionBus);

    /// A bus that nobody has started is off.
    bool isOn();
    /// Doesn't wait: starting the bus can take longer than a call may.
    void turnOn();

private:
    void ask();
    Q_SLOT void handleChange(const QDBusMessage &change);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::optional<bool> isOn_;
    std::optional<QDBusPendingCall> question_;
};

} // namespace lorvane
