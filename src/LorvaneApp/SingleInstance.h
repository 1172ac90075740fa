#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace lorvane {

/// Sees to it that there is one Lorvane in a session: the one that owns its name on the session
/// bus. It answers there as org.freedesktop.Application, so that a launcher can bring it forward
/// too. Without a session bus every Lorvane is on its own. Main thread only.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    /// What the desktop gave this start, for its windows to be let to the front: the platform data
    /// of the interface. To be called before the application object takes it out of the
    /// environment.
    static QVariantMap platformData();

    /// Needs an application object. `platformData` is passed on to the first, if this isn't it.
    explicit SingleInstance(const QVariantMap &platformData);

    /// Whether this is the first. If not, the first has been asked to come forward; a first that
    /// doesn't answer is given two seconds.
    bool isFirst() const { return isFirst_; }

Q_SIGNALS:
    /// Another start, or a launcher, wants to see the window.
    void activated();

private:
    bool takeName(const QVariantMap &platformData);

    bool isFirst_;
};

/// The interface that the desktop's launchers know. There are no files to open and no actions.
class ApplicationInterface : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    explicit ApplicationInterface(SingleInstance &instance)
        : QDBusAbstractAdaptor(&instance), instance_(instance) {}

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameters,
                        const QVariantMap &platformData);

private:
    SingleInstance &instance_;
};

} // namespace lorvane
