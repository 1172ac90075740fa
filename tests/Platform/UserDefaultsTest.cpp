#include "Fakes/FakeUserDefaults.h"
#include "Platform/Linux/QtUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

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

} // namespace
} // namespace lorvane
