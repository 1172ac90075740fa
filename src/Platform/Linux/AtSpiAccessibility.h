#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/AtSpiBus.h"
#include "Platform/Linux/FocusMemory.h"

#include <QHash>
#include <QObject>

#include <memory>

namespace lorvane {

/// The focus inside applications over AT-SPI 2, the desktop's accessibility bus. It follows the
/// focus all the time: when the shortcut is held down, many applications don't know of it any more.
/// What an application that hangs would say is unknown: it has no focused element then. The same
/// goes for this process, which can't answer itself.
class AtSpiAccessibility final : public QObject, public Accessibility {
    Q_OBJECT

public:
    AtSpiAccessibility();

    Async<std::optional<AccessibleElement>> focusedElement(RunningApplication running) override;
    Async<bool> setFocused(AccessibleElement element) override;

private:
    struct Application {
        FocusMemory memory;
        qint64 processId = 0; ///< 0 until it was asked for
        quint64 lastEvent = 0;
    };

    struct Focus {
        QString path;             ///< empty if there is none
        bool isUnsettled = false; ///< one that it had may be about to come back
    };

    void follow();
    Async<Focus> askForFocus(QString bus, QDeadlineTimer deadline);
    Application &applicationOf(const QString &bus);
    Async<QString> busOf(qint64 processId, QDeadlineTimer deadline);
    void deliverEvents();

    void search(const QString &bus);
    void searchBelow(const AccessibleElement &element, const std::shared_ptr<int> &questionsLeft);

    void verify(const AccessibleElement &element);

    Q_SLOT void handleStateChange(const QDBusMessage &event);
    Q_SLOT void handleFocus(const QDBusMessage &event);
    Q_SLOT void handleActivation(const QDBusMessage &event);
    Q_SLOT void handleDeactivation(const QDBusMessage &event);

    AtSpiBus bus_;
    QHash<QString, Application> applications_; ///< by their names on the bus
    quint64 eventCount_ = 0;
};

} // namespace lorvane
