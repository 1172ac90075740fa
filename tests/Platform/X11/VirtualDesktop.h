#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace lorvane {

/// Runs the event loop until the condition holds; false if it doesn't within the limit.
bool waitUntil(const std::function<bool()> &condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

/// A desktop of the test's own: a virtual X server, and what else it asks for. Everything it starts
/// ends with it, also when the test crashes; folders are private and temporary. The environment of
/// this process leads to it as long as it lives.
class VirtualDesktop {
public:
    enum Part { server = 0, windowManager = 1, sessionBus = 2, accessibilityBus = 4 | sessionBus };

    /// Has the program's tests run in such a desktop: to be called before main. Listing the tests
    /// starts nothing.
    static bool use(int parts);
    /// The one that the tests run in.
    static VirtualDesktop &current();

    explicit VirtualDesktop(int parts);
    VirtualDesktop(const VirtualDesktop &) = delete;
    VirtualDesktop &operator=(const VirtualDesktop &) = delete;
    ~VirtualDesktop();

    /// Starts a program that lives at most as long as the desktop.
    QProcess &start(const QString &program, const QStringList &arguments = {});
    /// Runs a program to its end; false if it fails.
    bool run(const QString &program, const QStringList &arguments);
    void end(QProcess &process);
    QProcess &xServer() { return *processes_.front(); }

    void startWindowManager();
    void endWindowManager() { end(*windowManager_); }
    void startAccessibilityBus();
    void endAccessibilityBus();

    QString folder() const { return folder_.path(); }

private:
    void setVariable(const char *name, const QByteArray &value);
    void startServer();
    void startSessionBus();

    QTemporaryDir folder_;
    std::vector<std::pair<const char *, QByteArray>> oldVariables_;
    std::vector<std::unique_ptr<QProcess>> processes_;
    QProcess *windowManager_ = nullptr;
    QProcess *accessibilityBus_ = nullptr;
    uint accessibilityDaemon_ = 0; ///< the process of the bus itself
};

} // namespace lorvane
