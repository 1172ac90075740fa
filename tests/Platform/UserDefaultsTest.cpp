#include "Fakes/FakeUserDefaults.h"
#include "Platform/Linux/QtUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lorvane {
namespace {

const QString key = QStringLiteral("Lorvane.didCompleteSetup");

struct InMemory {
    FakeUserDefaults defaults;
};

struct OnDisk {
    QTemporaryDir folder;
    QtUserDefaults defaults{folder.filePath(QStringLiteral("missing/lorvane.conf"))};
};

/// What holds for all stores.
template <class Store>
class UserDefaultsTest : public testing::Test {
protected:
    Store store;
    UserDefaults &defaults = store.defaults;
};

using Stores = testing::Types<InMemory, OnDisk>;
TYPED_TEST_SUITE(UserDefaultsTest, Stores);

TYPED_TEST(UserDefaultsTest, AMissingKeyIsFalse) { EXPECT_FALSE(this->defaults.boolean(key)); }

TYPED_TEST(UserDefaultsTest, AStoreThatIsNotThereYetIsNoError) {
    EXPECT_EQ(this->defaults.readError(), QString());
    this->defaults.setBoolean(key, true);
    EXPECT_EQ(this->defaults.readError(), QString());
}

TYPED_TEST(UserDefaultsTest, AValueIsKept) {
    this->defaults.setBoolean(key, true);
    EXPECT_TRUE(this->defaults.boolean(key));
    EXPECT_FALSE(this->defaults.boolean(QStringLiteral("Lorvane.other")));
    this->defaults.setBoolean(key, false);
    EXPECT_FALSE(this->defaults.boolean(key));
}

TEST(QtUserDefaultsTest, AValueIsOnDiskAtOnceAndSeenByANewInstance) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lorvane.conf"));
    QtUserDefaults first(path);
    first.setBoolean(key, true);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_TRUE(QtUserDefaults(path).boolean(key));
}

TEST(QtUserDefaultsTest, TheFileOfTheUserIsInTheConfigurationFolder) {
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    EXPECT_EQ(QtUserDefaults::standardPath(),
              folder.filePath(QStringLiteral("lorvane/lorvane.conf")));
    QtUserDefaults().setBoolean(key, true);
    EXPECT_TRUE(QtUserDefaults().boolean(key));
    EXPECT_TRUE(QFile::exists(QtUserDefaults::standardPath()));
}

TEST(QtUserDefaultsTest, AStoreThatCannotBeWrittenKeepsTheValueForThisRun) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("blocked")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QtUserDefaults defaults(folder.filePath(QStringLiteral("blocked/lorvane.conf")));
    defaults.setBoolean(key, true);
    EXPECT_TRUE(defaults.boolean(key));
}

/// What may lie in the place of the file, each under its name.
void makeUnreadable(const QString &folder) {
    const auto write = [&folder](const QString &name, const QByteArray &bytes) {
        QFile file(folder + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    write(QStringLiteral("json"), "{ \"theme\": \"dark\" }\n");
    write(QStringLiteral("no section"), "[General\nLorvane.didCompleteSetup\n");
    write(QStringLiteral("half"), "[General]\nLorvane.didCompleteSetup=true\n%%%\n");
    QDir(folder).mkdir(QStringLiteral("folder"));
    ASSERT_EQ(mkfifo(QFile::encodeName(folder + QStringLiteral("/pipe")).constData(), 0600), 0);
    QFile::link(QStringLiteral("circle"), folder + QStringLiteral("/circle"));
}

TEST(QtUserDefaultsTest, AFileThatCannotBeReadIsToldOfAndStaysAsItIs) {
    const QTemporaryDir folder;
    makeUnreadable(folder.path());
    const auto contents = [](const QString &path) {
        QFile file(path);
        return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                          : QByteArray();
    };
    const QStringList names =
        QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    ASSERT_EQ(names.size(), 6);
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        const QString path = folder.filePath(name);
        const QByteArray before = contents(path);
        {
            QtUserDefaults defaults(path);
            EXPECT_TRUE(defaults.readError().startsWith(u"“%1” "_qs.arg(path)))
                << defaults.readError().toStdString();
            EXPECT_FALSE(defaults.boolean(key));
            defaults.setBoolean(key, true);
            EXPECT_TRUE(defaults.boolean(key));
        }
        EXPECT_EQ(contents(path), before);
    }
    // Nor has anything been put beside them.
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
              names);
}

} // namespace
} // namespace lorvane
