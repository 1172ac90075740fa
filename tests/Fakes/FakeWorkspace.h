#pragma once

#include "Platform/Workspace.h"

#include <QList>
#include <QSet>
#include <QStringList>

#include <functional>
#include <utility>
#include <vector>

namespace lorvane {

/// A screen with one application in front, as the test says. `log` gets the calls that do something
/// in order ("activate 42"), if given.
class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(QStringList *log = nullptr) : log_(log) {}

    std::optional<RunningApplication> front;
    /// The ids of the processes that have ended.
    QSet<qint64> terminated;
    /// What `activate` gives.
    bool canActivate = true;
    /// Whether an accepted `activate` takes effect; a terminated application never comes forward.
    bool activationTakesEffect = true;
    /// Called in `activate`, before it takes effect.
    std::function<void(const RunningApplication &)> onActivate;

    int frontmostCount = 0;
    QList<RunningApplication> activated;
    QStringList openedAddresses;
    QStringList shownFiles;

    /// As when the user switches to an application.
    void bringForward(const RunningApplication &application) {
        front = application;
        const auto observers = observers_;
        for (const Activated &observer : observers)
            observer(application);
    }

    std::optional<RunningApplication> frontmostApplication() override {
        ++frontmostCount;
        return front;
    }

    bool isTerminated(const RunningApplication &application) override {
        return terminated.contains(application.processId);
    }

    bool activate(const RunningApplication &application) override {
        record(QStringLiteral("activate %1").arg(application.processId));
        activated.append(application);
        if (onActivate)
            onActivate(application);
        if (!canActivate || isTerminated(application))
            return false;
        if (activationTakesEffect && front != application)
            bringForward(application);
        return true;
    }

    void observeActivation(Activated observer) override {
        observers_.push_back(std::move(observer));
    }

    void openAddress(const QString &address) override {
        record(QStringLiteral("openAddress %1").arg(address));
        openedAddresses.append(address);
    }

    void showFile(const QString &path) override {
        record(QStringLiteral("showFile %1").arg(path));
        shownFiles.append(path);
    }

private:
    void record(const QString &call) {
        if (log_)
            log_->append(call);
    }

    QStringList *log_;
    std::vector<Activated> observers_;
};

} // namespace lorvane
