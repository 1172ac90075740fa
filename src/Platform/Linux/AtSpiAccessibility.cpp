#include "Platform/Linux/AtSpiAccessibility.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace lorvane {

namespace {

using namespace std::chrono_literals;

constexpr auto readLimit = 200ms;
constexpr auto writeLimit = 400ms;
constexpr auto settleLimit = 100ms;

} // namespace

AtSpiAccessibility::AtSpiAccessibility() {
    connect(&bus_, &AtSpiBus::connected, this, &AtSpiAccessibility::follow);
    connect(&bus_, &AtSpiBus::disconnected, this, [this] { applications_.clear(); });
    // An application that comes to the bus late may have the focus already.
    connect(&bus_, &AtSpiBus::joined, this, &AtSpiAccessibility::search);
    connect(&bus_, &AtSpiBus::left, this,
            [this](const QString &name) { applications_.remove(name); });
    bus_.open();
}

Async<std::optional<AccessibleElement>>
AtSpiAccessibility::focusedElement(RunningApplication running) {
    if (running.processId == QCoreApplication::applicationPid())
        co_return std::nullopt;
    if (!bus_.isConnected()) {
        bus_.open();
        co_return std::nullopt;
    }
    const QDeadlineTimer deadline(readLimit);
    deliverEvents();
    const QString bus = co_await busOf(running.processId, deadline);
    if (bus.isEmpty())
        co_return std::nullopt;

    // An application's window becomes active some milliseconds before its element has the focus.
    const QDeadlineTimer settled(settleLimit);
    Focus focus = co_await askForFocus(bus, deadline);
    while (focus.isUnsettled && !settled.hasExpired())
        focus = co_await askForFocus(bus, deadline);
    if (focus.path.isEmpty())
        co_return std::nullopt;
    co_return AccessibleElement{bus, focus.path};
}

/// The application may leave the bus during each question.
Async<AtSpiAccessibility::Focus> AtSpiAccessibility::askForFocus(QString bus,
                                                                 QDeadlineTimer deadline) {
    std::vector<std::pair<QString, AtSpiStates>> candidates;
    const QStringList paths = applications_.value(bus).memory.candidates();
    for (const QString &path : paths) {
        const AccessibleElement element{bus, path};
        const AtSpiBus::StatesAnswer answer = co_await bus_.states(element, deadline);
        const auto asked = applications_.find(bus);
        if (answer.outcome == AtSpiBus::Outcome::silent || asked == applications_.end())
            co_return Focus();
        if (answer.outcome == AtSpiBus::Outcome::gone)
            asked->memory.forget(path);
        else
            candidates.emplace_back(path, answer.states);
    }
    deliverEvents();
    const auto application = applications_.constFind(bus);
    if (application == applications_.constEnd())
        co_return Focus();
    // Where no window is active, what an element says of its focus says little.
    if (application->memory.isActive()) {
        std::erase_if(candidates, [](const auto &candidate) {
            return !candidate.second.has(AtSpiState::focused);
        });
    }
    if (candidates.empty())
        co_return Focus{QString(), !paths.isEmpty()};
    const auto text = std::find_if(candidates.begin(), candidates.end(), [](const auto &candidate) {
        return candidate.second.has(AtSpiState::editable);
    });
    co_return Focus{text != candidates.end() ? text->first : candidates.front().first};
}

Async<bool> AtSpiAccessibility::setFocused(AccessibleElement element) {
    const QDeadlineTimer deadline(writeLimit);
    const qint64 processId = co_await bus_.processId(element.bus, deadline);
    if (processId == 0 || processId == QCoreApplication::applicationPid())
        co_return false;
    const bool isFocused = co_await bus_.grabFocus(element, deadline);
    co_return isFocused;
}

void AtSpiAccessibility::follow() {
    bus_.subscribe(QStringLiteral("object:state-changed:focused"), QStringLiteral("Object"),
                   QStringLiteral("StateChanged"), {QStringLiteral("focused")}, this,
                   SLOT(handleStateChange(QDBusMessage)));
    bus_.subscribe(QStringLiteral("focus:"), QStringLiteral("Focus"), QStringLiteral("Focus"), {},
                   this, SLOT(handleFocus(QDBusMessage)));
    bus_.subscribe(QStringLiteral("window:activate"), QStringLiteral("Window"),
                   QStringLiteral("Activate"), {}, this, SLOT(handleActivation(QDBusMessage)));
    bus_.subscribe(QStringLiteral("window:deactivate"), QStringLiteral("Window"),
                   QStringLiteral("Deactivate"), {}, this, SLOT(handleDeactivation(QDBusMessage)));
    // Nobody tells of the focus that is there already.
    bus_.askForChildren(AtSpiBus::desktop(), [this](const QList<AccessibleElement> &applications) {
        for (const AccessibleElement &application : applications)
            search(application.bus);
    });
}

AtSpiAccessibility::Application &AtSpiAccessibility::applicationOf(const QString &bus) {
    auto application = applications_.find(bus);
    if (application == applications_.end()) {
        application = applications_.insert(bus, {});
        bus_.watch(bus);
    }
    application->lastEvent = ++eventCount_;
    return *application;
}

/// The name of a process on the bus, empty if it isn't known. Of several, the one that spoke last.
Async<QString> AtSpiAccessibility::busOf(qint64 processId, QDeadlineTimer deadline) {
    const QStringList names = applications_.keys();
    for (const QString &name : names) {
        if (applications_.value(name).processId != 0)
            continue;
        const qint64 answer = co_await bus_.processId(name, deadline);
        if (const auto application = applications_.find(name); application != applications_.end())
            application->processId = answer;
    }
    QString bus;
    quint64 lastEvent = 0;
    for (auto it = applications_.cbegin(); it != applications_.cend(); ++it) {
        if (it->processId == processId && it->lastEvent >= lastEvent) {
            bus = it.key();
            lastEvent = it->lastEvent;
        }
    }
    co_return bus;
}

/// Takes in the events that came before the last answer did.
void AtSpiAccessibility::deliverEvents() { QCoreApplication::sendPostedEvents(this); }

/// Looks for the focus in the active windows of an application that hasn't told of it.
void AtSpiAccessibility::search(const QString &bus) {
    constexpr int mostQuestions = 2000;
    const auto questionsLeft = std::make_shared<int>(mostQuestions);
    bus_.askForChildren(
        AtSpiBus::application(bus), [this, questionsLeft](const QList<AccessibleElement> &windows) {
            for (const AccessibleElement &window : windows) {
                bus_.askForStates(window, [this, window, questionsLeft](AtSpiStates states) {
                    if (!states.has(AtSpiState::active))
                        return;
                    applicationOf(window.bus).memory.foundActiveWindow(window.path);
                    searchBelow(window, questionsLeft);
                });
            }
        });
}

void AtSpiAccessibility::searchBelow(const AccessibleElement &element,
                                     const std::shared_ptr<int> &questionsLeft) {
    bus_.askForChildren(element, [this, questionsLeft](const QList<AccessibleElement> &children) {
        for (const AccessibleElement &child : children) {
            if (--*questionsLeft < 0)
                return;
            bus_.askForStates(child, [this, child, questionsLeft](AtSpiStates states) {
                if (states.has(AtSpiState::focused))
                    applicationOf(child.bus).memory.found(child.path);
                // Lists and tables make up children without end.
                if (states.has(AtSpiState::showing) && !states.has(AtSpiState::managesDescendants))
                    searchBelow(child, questionsLeft);
            });
        }
    });
}

void AtSpiAccessibility::handleStateChange(const QDBusMessage &event) {
    const bool isGain = event.arguments().value(1).toInt() != 0;
    FocusMemory &memory = applicationOf(event.service()).memory;
    if (!isGain)
        return memory.lost(event.path());
    memory.gained(event.path());
    if (memory.candidates().size() > 1)
        verify({event.service(), event.path()});
}

void AtSpiAccessibility::verify(const AccessibleElement &element) {
    bus_.askForStates(element, [this, element](AtSpiStates states) {
        const auto application = applications_.find(element.bus);
        // Where no window is active, an element that has the focus may deny it.
        if (application != applications_.end() && application->memory.isActive() &&
            !states.has(AtSpiState::focused))
            application->memory.denied(element.path);
    });
}

void AtSpiAccessibility::handleFocus(const QDBusMessage &event) {
    applicationOf(event.service()).memory.gainedInOldWay(event.path());
}

void AtSpiAccessibility::handleActivation(const QDBusMessage &event) {
    FocusMemory &memory = applicationOf(event.service()).memory;
    memory.windowActivated(event.path());
    if (memory.candidates().isEmpty())
        search(event.service());
}

void AtSpiAccessibility::handleDeactivation(const QDBusMessage &event) {
    applicationOf(event.service()).memory.windowDeactivated(event.path());
}

} // namespace lorvane
