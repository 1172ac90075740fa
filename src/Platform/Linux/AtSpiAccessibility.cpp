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
constexpr auto settleLimit = 40ms;

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

std::optional<AccessibleElement>
AtSpiAccessibility::focusedElement(const RunningApplication &running) {
    if (running.processId == QCoreApplication::applicationPid())
        return std::nullopt;
    if (!bus_.isConnected()) {
        bus_.open();
        return std::nullopt;
    }
    const QDeadlineTimer deadline(readLimit);
    deliverEvents();
    const QString bus = busOf(running.processId, deadline);
    if (bus.isEmpty())
        return std::nullopt;

    // An application's window becomes active some milliseconds before its element has the focus.
    const QDeadlineTimer settled(settleLimit);
    Focus focus = askForFocus(bus, deadline);
    while (focus.isUnsettled && !settled.hasExpired())
        focus = askForFocus(bus, deadline);
    if (focus.path.isEmpty())
        return std::nullopt;
    return AccessibleElement{bus, focus.path};
}

AtSpiAccessibility::Focus AtSpiAccessibility::askForFocus(const QString &bus,
                                                          const QDeadlineTimer &deadline) {
    std::vector<std::pair<QString, AtSpiStates>> candidates;
    const QStringList paths = applications_[bus].memory.candidates();
    for (const QString &path : paths) {
        const auto answer = bus_.states({bus, path}, deadline);
        if (answer.outcome == AtSpiBus::Outcome::silent)
            return {};
        if (answer.outcome == AtSpiBus::Outcome::gone)
            applications_[bus].memory.forget(path);
        else
            candidates.emplace_back(path, answer.states);
    }
    deliverEvents();
    const auto application = applications_.constFind(bus);
    if (application == applications_.constEnd())
        return {};
    // Where no window is active, what an element says of its focus says little.
    if (application->memory.isActive()) {
        std::erase_if(candidates, [](const auto &candidate) {
            return !candidate.second.has(AtSpiState::focused);
        });
    }
    if (candidates.empty())
        return {QString(), !paths.isEmpty()};
    const auto text = std::find_if(candidates.begin(), candidates.end(), [](const auto &candidate) {
        return candidate.second.has(AtSpiState::editable);
    });
    return {text != candidates.end() ? text->first : candidates.front().first};
}

bool AtSpiAccessibility::setFocused(const AccessibleElement &element) {
    const QDeadlineTimer deadline(writeLimit);
    const qint64 processId = bus_.processId(element.bus, deadline);
    if (processId == 0 || processId == QCoreApplication::applicationPid())
        return false;
    return bus_.grabFocus(element, deadline);
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
QString AtSpiAccessibility::busOf(qint64 processId, const QDeadlineTimer &deadline) {
    QString bus;
    quint64 lastEvent = 0;
    for (auto it = applications_.begin(); it != applications_.end(); ++it) {
        if (it->processId == 0)
            it->processId = bus_.processId(it.key(), deadline);
        if (it->processId == processId && it->lastEvent >= lastEvent) {
            bus = it.key();
            lastEvent = it->lastEvent;
        }
    }
    return bus;
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
