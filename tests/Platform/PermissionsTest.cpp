#include "Fakes/FakeClock.h"
#include "Fakes/FakePermissions.h"
#include "Fakes/FakeUserDefaults.h"
#include "Platform/Linux/ApplicationId.h"
#include "Platform/Linux/DesktopPermissions.h"
#include "PrivateServers.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QElapsedTimer>
#include <QTimer>
#include <QUuid>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace lorvane {
namespace {

/// The user before a prompt, and the grants on a fake clock: what they wait for is the user alone.
struct User {
    FakeClock clock;
    std::optional<bool> answer; // absent leaves the prompt standing
    QStringList questions;
    std::optional<Continuation<bool>> standing;

    Async<bool> ask(QString question) {
        questions.append(question);
        const bool isAllowed =
            co_await suspend<bool>(clock, [this](const Continuation<bool> &caller) {
                standing = caller;
                if (answer)
                    caller.resume(*answer);
            });
        co_return isAllowed;
    }
};

struct Fake : User {
    FakePermissions permissions{clock};

    Fake() {
        permissions.microphone = 0;
        permissions.speech = 0;
        permissions.accessibility = false;
    }
    void userWillAnswer(std::optional<bool> isAllowed) {
        permissions.microphoneAnswer = isAllowed;
        permissions.speechAnswer = isAllowed;
    }
    void userAnswersMicrophone(bool isAllowed) { permissions.answerMicrophone(isAllowed); }
    bool waitUntil(const std::function<bool()> &condition) {
        clock.runUntilIdle();
        return condition();
    }
    int promptCount() const {
        return permissions.microphonePromptCount + permissions.speechPromptCount;
    }
};

/// The real grants on a bus of the test's own.
struct Desktop : User {
    int count = 0;
    QCoreApplication application{count, nullptr};
    PrivateBus bus;
    QDBusConnection connection = connectTo(bus);
    FakeUserDefaults defaults;
    bool canPostKeys = true;
    DesktopPermissions permissions{connection, defaults,
                                   [this](QString question) { return ask(std::move(question)); },
                                   [this] { return canPostKeys; }};

    Desktop() = default;
    explicit Desktop(const QString &services, const QString &policy = {}) : bus(services, policy) {}
    ~Desktop() { QDBusConnection::disconnectFromBus(connection.name()); }

    static QDBusConnection connectTo(const PrivateBus &bus) {
        return QDBusConnection::connectToBus(bus.address(), QUuid::createUuid().toString());
    }
    void userWillAnswer(std::optional<bool> isAllowed) { answer = isAllowed; }
    void userAnswersMicrophone(bool isAllowed) { standing->resume(isAllowed); }
    qsizetype promptCount() const { return questions.size(); }

    /// Lets everything happen that is on its way, until then.
    bool waitUntil(const std::function<bool()> &condition) {
        QTimer tick;
        tick.start(2);
        QElapsedTimer timer;
        timer.start();
        clock.runUntilIdle();
        while (!condition() && timer.elapsed() < 10'000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            clock.runUntilIdle();
        }
        return condition();
    }
};

Async<> keepMicrophone(Permissions &permissions, std::optional<bool> &result) {
    const bool isGranted = co_await permissions.requestMicrophone();
    result = isGranted;
}

Async<> keepSpeech(Permissions &permissions, std::optional<int> &result) {
    const int status = co_await permissions.requestSpeech();
    result = status;
}

/// What holds for all grants that nobody has given yet.
template <class Driver>
class PermissionsTest : public testing::Test {
protected:
    std::optional<bool> requestMicrophone() {
        std::optional<bool> result;
        Task<>::run(keepMicrophone(permissions, result));
        driver.waitUntil([&] { return result.has_value(); });
        return result;
    }
    std::optional<int> requestSpeech() {
        std::optional<int> result;
        Task<>::run(keepSpeech(permissions, result));
        driver.waitUntil([&] { return result.has_value(); });
        return result;
    }

    Driver driver;
    Permissions &permissions = driver.permissions;
};

using Drivers = testing::Types<Fake, Desktop>;
TYPED_TEST_SUITE(PermissionsTest, Drivers);

TYPED_TEST(PermissionsTest, NothingIsDeterminedAtFirst) {
    EXPECT_EQ(this->permissions.microphoneStatus(), 0);
    EXPECT_EQ(this->permissions.speechStatus(), 0);
    EXPECT_FALSE(this->permissions.accessibilityTrusted());
    EXPECT_EQ(this->driver.promptCount(), 0);
}

TYPED_TEST(PermissionsTest, WhatTheUserAllowsIsAuthorizedAndNotAskedAgain) {
    this->driver.userWillAnswer(true);
    EXPECT_EQ(this->requestMicrophone(), true);
    EXPECT_EQ(this->requestSpeech(), 3);
    EXPECT_EQ(this->permissions.microphoneStatus(), 3);
    EXPECT_EQ(this->permissions.speechStatus(), 3);
    EXPECT_EQ(this->driver.promptCount(), 2);
    EXPECT_EQ(this->requestMicrophone(), true);
    EXPECT_EQ(this->requestSpeech(), 3);
    EXPECT_EQ(this->driver.promptCount(), 2);
}

TYPED_TEST(PermissionsTest, WhatTheUserRefusesIsDeniedByEachGrantsOwnNumberAndNotAskedAgain) {
    this->driver.userWillAnswer(false);
    EXPECT_EQ(this->requestMicrophone(), false);
    EXPECT_EQ(this->requestSpeech(), 1);
    EXPECT_EQ(this->permissions.microphoneStatus(), 2);
    EXPECT_EQ(this->permissions.speechStatus(), 1);
    EXPECT_EQ(this->requestMicrophone(), false);
    EXPECT_EQ(this->requestSpeech(), 1);
    EXPECT_EQ(this->driver.promptCount(), 2);
}

TYPED_TEST(PermissionsTest, OneGrantSaysNothingOfTheOther) {
    this->driver.userWillAnswer(true);
    this->requestMicrophone();
    EXPECT_EQ(this->permissions.speechStatus(), 0);
}

TYPED_TEST(PermissionsTest, ARequestWaitsForTheUserAndTwoShareOnePrompt) {
    this->driver.userWillAnswer(std::nullopt);
    std::optional<bool> first;
    std::optional<bool> second;
    Task<>::run(keepMicrophone(this->permissions, first));
    Task<>::run(keepMicrophone(this->permissions, second));
    this->driver.clock.runUntilIdle();
    EXPECT_EQ(this->driver.promptCount(), 1);
    EXPECT_FALSE(first || second);
    EXPECT_EQ(this->permissions.microphoneStatus(), 0);
    this->driver.userAnswersMicrophone(true);
    EXPECT_TRUE(this->driver.waitUntil([&] { return first && second; }));
    EXPECT_EQ(first, true);
    EXPECT_EQ(second, true);
    EXPECT_EQ(this->permissions.microphoneStatus(), 3);
}

class DesktopPermissionsTest : public testing::Test, protected Desktop {
protected:
    DesktopPermissionsTest() = default;
    using Desktop::Desktop;

    bool requestMicrophone() {
        std::optional<bool> result;
        Task<>::run(keepMicrophone(permissions, result));
        waitUntil([&] { return result.has_value(); });
        return result.value();
    }
    /// Calls the permission store as another program would.
    QDBusMessage callStore(const QString &method, const QVariantList &arguments) {
        const QString name = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
        QDBusMessage message = QDBusMessage::createMethodCall(
            name, QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"), name, method);
        message.setArguments(arguments);
        return connection.call(message);
    }
    void setFromOutside(const QString &table, const QString &id, const QString &owner,
                        const QString &permission) {
        callStore(QStringLiteral("SetPermission"),
                  {table, true, id, owner, QStringList(permission)});
    }
};

TEST_F(DesktopPermissionsTest, TheAnswerIsInThePermissionStoreOfTheDesktop) {
    answer = true;
    requestMicrophone();
    const QDBusMessage reply = callStore(QStringLiteral("Lookup"),
                                         {QStringLiteral("devices"), QStringLiteral("microphone")});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const auto entries =
        qdbus_cast<QMap<QString, QStringList>>(reply.arguments().at(0).value<QDBusArgument>());
    EXPECT_EQ(entries.value(applicationId), QStringList(QStringLiteral("yes")));
    EXPECT_TRUE(defaults.values.isEmpty());
    EXPECT_EQ(questions.value(0), QStringLiteral("“Lorvane” would like to access the microphone."));
}

TEST_F(DesktopPermissionsTest, WhatChangesOutsideShowsAtTheNextRead) {
    const QString devices = QStringLiteral("devices");
    const QString microphone = QStringLiteral("microphone");
    setFromOutside(devices, microphone, QStringLiteral("org.example.Other"), QStringLiteral("yes"));
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    setFromOutside(devices, microphone, applicationId, QStringLiteral("yes"));
    EXPECT_EQ(permissions.microphoneStatus(), 3);
    setFromOutside(devices, microphone, applicationId, QStringLiteral("no"));
    EXPECT_EQ(permissions.microphoneStatus(), 2);
    setFromOutside(devices, microphone, applicationId, QStringLiteral("ask"));
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    setFromOutside(QStringLiteral("lorvane"), QStringLiteral("speech-recognition"), applicationId,
                   QStringLiteral("no"));
    EXPECT_EQ(permissions.speechStatus(), 1);
}

TEST_F(DesktopPermissionsTest, AStoreThatHangsHoldsNobodyUpAndTheLastAnswerHolds) {
    answer = true;
    requestMicrophone();
    const QDBusReply<uint> id = connection.interface()->servicePid(
        QStringLiteral("org.freedesktop.impl.portal.PermissionStore"));
    ASSERT_TRUE(id.isValid());
    ::kill(pid_t(id.value()), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(permissions.microphoneStatus(), 3);
    EXPECT_EQ(permissions.speechStatus(), 0);
    EXPECT_LT(timer.elapsed(), 50);

    // Who comes new has to ask, but not twice.
    DesktopPermissions next(
        connection, defaults, [this](QString question) { return ask(std::move(question)); },
        [] { return true; });
    timer.start();
    EXPECT_EQ(next.microphoneStatus(), 0);
    EXPECT_EQ(next.speechStatus(), 0);
    EXPECT_LT(timer.elapsed(), 400);
    timer.start();
    EXPECT_EQ(next.microphoneStatus(), 0);
    EXPECT_LT(timer.elapsed(), 50) << "a store that hung a moment ago is waited for again";
    ::kill(pid_t(id.value()), SIGCONT);
}

TEST_F(DesktopPermissionsTest, AStoreThatComesAnewIsAskedAgain) {
    const QString store = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
    answer = true;
    requestMicrophone();
    const QDBusReply<uint> id = connection.interface()->servicePid(store);
    ASSERT_TRUE(id.isValid());
    ::kill(pid_t(id.value()), SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return !connection.interface()->isServiceRegistered(store); }));
    EXPECT_EQ(permissions.microphoneStatus(), 3);
    EXPECT_EQ(permissions.speechStatus(), 0);
    // It is started by this, and then tells of it.
    setFromOutside(QStringLiteral("lorvane"), QStringLiteral("speech-recognition"), applicationId,
                   QStringLiteral("yes"));
    EXPECT_EQ(permissions.speechStatus(), 3);
    EXPECT_EQ(permissions.microphoneStatus(), 3);
}

// Only the store's own word counts.
TEST_F(DesktopPermissionsTest, AnotherProgramsWordOfAChangeIsNotBelieved) {
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    const QDBusConnection stranger = connectTo(bus);
    const QString name = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
    QDBusMessage change =
        QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"),
                                   name, QStringLiteral("Changed"));
    const QMap<QString, QStringList> permitted{{applicationId, QStringList(QStringLiteral("yes"))}};
    qDBusRegisterMetaType<QMap<QString, QStringList>>();
    change.setArguments({QStringLiteral("devices"), QStringLiteral("microphone"), false,
                         QVariant::fromValue(QDBusVariant(0)), QVariant::fromValue(permitted)});
    EXPECT_TRUE(stranger.send(change));
    // The bus has passed it on once it answers the stranger, and it has come once it answers here.
    for (const QDBusConnection &asking : {stranger, connection})
        EXPECT_TRUE(asking.interface()->isServiceRegistered(stranger.baseService()));
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    QDBusConnection::disconnectFromBus(stranger.name());
}

TEST_F(DesktopPermissionsTest, AccessibilityThatIsSwitchedOffShowsAtTheNextRead) {
    permissions.requestAccessibility();
    ASSERT_TRUE(waitUntil([&] { return permissions.accessibilityTrusted(); }));
    QDBusMessage off = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
    off << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled")
        << QVariant::fromValue(QDBusVariant(false));
    connection.call(off);
    EXPECT_FALSE(permissions.accessibilityTrusted());

    permissions.requestAccessibility();
    ASSERT_TRUE(waitUntil([&] { return permissions.accessibilityTrusted(); }));
    const QDBusReply<uint> id = connection.interface()->servicePid(QStringLiteral("org.a11y.Bus"));
    ::kill(pid_t(id.value()), SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !permissions.accessibilityTrusted(); }));
}

TEST_F(DesktopPermissionsTest, AccessibilityIsTrustedOnceItsBusIsEnabledAndKeysCanBePosted) {
    EXPECT_FALSE(permissions.accessibilityTrusted());
    QElapsedTimer timer;
    timer.start();
    permissions.requestAccessibility();
    EXPECT_LT(timer.elapsed(), 50);
    for (int i = 0; i < 500 && !permissions.accessibilityTrusted(); ++i)
        QThread::msleep(10);
    EXPECT_TRUE(permissions.accessibilityTrusted());
    canPostKeys = false;
    EXPECT_FALSE(permissions.accessibilityTrusted());
}

TEST_F(DesktopPermissionsTest, AReadTakesLittleTime) {
    permissions.microphoneStatus();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 100; ++i)
        permissions.microphoneStatus();
    printf("one read: %.2f ms\n", double(timer.nsecsElapsed()) / 1e8);
    EXPECT_LT(timer.elapsed(), 2000);
}

class WithoutStoreTest : public DesktopPermissionsTest {
protected:
    WithoutStoreTest() : DesktopPermissionsTest(QString()) {}
};

TEST_F(WithoutStoreTest, TheAnswerIsKeptInTheUserDefaults) {
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    answer = false;
    EXPECT_FALSE(requestMicrophone());
    EXPECT_EQ(permissions.microphoneStatus(), 2);
    EXPECT_EQ(permissions.speechStatus(), 0);

    DesktopPermissions next(
        connection, defaults, [this](QString question) { return ask(std::move(question)); },
        [] { return true; });
    EXPECT_EQ(next.microphoneStatus(), 2);
    EXPECT_FALSE(next.accessibilityTrusted());
}

class ReadOnlyStoreTest : public DesktopPermissionsTest {
protected:
    ReadOnlyStoreTest()
        : DesktopPermissionsTest(
              QStringLiteral("<standard_session_servicedirs/>"),
              QStringLiteral("<deny send_interface=\"org.freedesktop.impl.portal.PermissionStore\" "
                             "send_member=\"SetPermission\"/>")) {}
};

TEST_F(ReadOnlyStoreTest, AStoreThatForbidsWritingIsRestricted) {
    EXPECT_EQ(permissions.microphoneStatus(), 0);
    answer = true;
    EXPECT_FALSE(requestMicrophone());
    EXPECT_EQ(permissions.microphoneStatus(), 1);
    std::optional<int> speech;
    Task<>::run(keepSpeech(permissions, speech));
    waitUntil([&] { return speech.has_value(); });
    EXPECT_EQ(speech, 2);
    EXPECT_TRUE(defaults.values.isEmpty());
}

} // namespace
} // namespace lorvane
