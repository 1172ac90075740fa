#include "Platform/Linux/PortalSavePanel.h"

#include "Fakes/FakeSavePanel.h"
#include "PrivateServers.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <gtest/gtest.h>

#include <functional>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;

/// A portal on a bus, and its user.
class FakePortal final : public QDBusVirtualObject {
public:
    bool hasFileChooser = true;
    bool hangs = false;
    std::function<void()> whenAsked = [] {};
    QVariantList question; ///< parent window, title, options
    QStringList closed;    ///< requests that nobody waits for any more
    QString request;

    explicit FakePortal(QDBusConnection bus) : bus_(std::move(bus)) {
        bus_.registerVirtualObject(portalPath, this, QDBusConnection::SubPath);
        bus_.registerService(portalName);
    }
    ~FakePortal() override { goAway(); }

    void goAway() { bus_.unregisterService(portalName); }

    void respond(uint code, const QVariantMap &results = {}) {
        QDBusMessage signal =
            QDBusMessage::createSignal(request, u"org.freedesktop.portal.Request"_s, u"Response"_s);
        signal << code << results;
        bus_.send(signal);
    }

    QVariant option(const QString &name) const {
        return qdbus_cast<QVariantMap>(question.value(2).value<QDBusArgument>()).value(name);
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override {
        if (message.member() == u"Close") {
            closed.append(message.path());
            return true;
        }
        if (!hasFileChooser || message.interface() != u"org.freedesktop.portal.FileChooser" ||
            message.member() != u"SaveFile")
            return false;
        question = message.arguments();
        request = portalPath + u"/request/"_s + message.service().mid(1).replace(u'.', u'_') +
                  u'/' + option(u"handle_token"_s).toString();
        if (!hangs)
            bus_.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        whenAsked();
        return true;
    }

    QString introspect(const QString &) const override { return {}; }

private:
    QDBusConnection bus_;
};

class PortalSavePanelTest : public testing::Test {
protected:
    // Before the application, which takes the platform from there.
    const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 0;
    QApplication application{count, nullptr};
    PrivateBus bus{QString()};
    QDBusConnection ours = connectTo(bus);
    QDBusConnection theirs = connectTo(bus);
    std::optional<FakePortal> portal{std::in_place, theirs};
    FakeSavePanel otherwise;
    PortalSavePanel panel{ours, otherwise};
    const QString name = u"Lorvane History.txt"_s;

    void TearDown() override {
        portal.reset();
        for (const QDBusConnection &connection : {ours, theirs})
            QDBusConnection::disconnectFromBus(connection.name());
    }

    static QDBusConnection connectTo(const PrivateBus &bus) {
        return QDBusConnection::connectToBus(bus.address(), QUuid::createUuid().toString());
    }

    void userWillChoose(const QString &address) {
        portal->whenAsked = [this, address] {
            portal->respond(0, {{u"uris"_s, QStringList(address)}});
        };
    }

    /// The other panel is asked, once and for the same name, and what it gives is given.
    void expectAskedOtherwise() {
        otherwise.proposedFileNames.clear();
        otherwise.answer = u"/else/where.txt"_s;
        EXPECT_EQ(panel.run(name), otherwise.answer);
        EXPECT_EQ(otherwise.proposedFileNames, QStringList(name));
    }
};

TEST_F(PortalSavePanelTest, GivesThePathThatWasChosen) {
    const QString path = u"/tmp/Größer, “so” 100% #1 🎤\".txt"_s;
    userWillChoose(QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()));
    EXPECT_EQ(panel.run(name), path);
    EXPECT_EQ(otherwise.proposedFileNames, QStringList());
    EXPECT_EQ(portal->closed, QStringList());
}

TEST_F(PortalSavePanelTest, ProposesTheNameInTheFolderOfDocuments) {
    userWillChoose(u"file:///a"_s);
    panel.run(name);
    EXPECT_EQ(portal->question.value(1), u"Save As"_s);
    EXPECT_EQ(portal->option(u"current_name"_s), name);
    const QByteArray folder = portal->option(u"current_folder"_s).toByteArray();
    EXPECT_TRUE(folder.startsWith('/') && folder.endsWith('\0'));
}

TEST_F(PortalSavePanelTest, GivesNothingWhenCancelled) {
    for (const uint code : {1U, 2U}) {
        portal->whenAsked = [this, code] { portal->respond(code); };
        EXPECT_EQ(panel.run(name), std::nullopt) << code;
    }
    EXPECT_EQ(otherwise.proposedFileNames, QStringList());
}

TEST_F(PortalSavePanelTest, KeepsTheProgramsWindowsFromTheUserAndGoesOnMeanwhile) {
    EXPECT_FALSE(QApplication::activeModalWidget());
    portal->whenAsked = [this] {
        QTimer::singleShot(0, [this] {
            EXPECT_TRUE(QApplication::activeModalWidget());
            portal->respond(1);
        });
    };
    panel.run(name);
    EXPECT_FALSE(QApplication::activeModalWidget());
}

TEST_F(PortalSavePanelTest, WithoutAPortalAnotherPanelAsks) {
    portal.reset();
    expectAskedOtherwise();
}

TEST_F(PortalSavePanelTest, WithAPortalThatHasNoFileDialogAnotherPanelAsks) {
    portal->hasFileChooser = false;
    expectAskedOtherwise();
}

TEST_F(PortalSavePanelTest, WhenThePortalGivesUpAnotherPanelAsks) {
    portal->whenAsked = [this] { portal->respond(0); };
    expectAskedOtherwise();
    userWillChoose(u"sftp://server/file.txt"_s);
    expectAskedOtherwise();
    portal->whenAsked = [this] { portal->goAway(); };
    expectAskedOtherwise();
}

TEST_F(PortalSavePanelTest, APortalThatHangsIsLeftAloneAndTakesItsDialogBack) {
    portal->hangs = true;
    PortalSavePanel impatient(ours, otherwise, 20ms);
    otherwise.whileOpen = [this] {
        while (portal->closed.isEmpty())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    impatient.run(name);
    EXPECT_EQ(otherwise.proposedFileNames, QStringList(name));
    EXPECT_EQ(portal->closed, QStringList(portal->request));
}

TEST_F(PortalSavePanelTest, TheEndOfTheProgramEndsTheQuestionToo) {
    portal->whenAsked = [] { QApplication::exit(); };
    EXPECT_EQ(panel.run(name), std::nullopt);
    EXPECT_EQ(otherwise.proposedFileNames, QStringList());
}

} // namespace
} // namespace lorvane
