#include "LorvaneApp/Privacy.h"

#include "Core/DurableFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

namespace lorvane {
namespace {

mode_t modeOf(const QString &path) {
    struct stat status {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
    return status.st_mode & 07777;
}

class PrivacyTest : public testing::Test {
protected:
    void TearDown() override { umask(before_); }

    const mode_t before_ = umask(022);
};

TEST_F(PrivacyTest, WhateverIsWrittenIsItsUsersAloneUnderEveryUmask) {
    for (mode_t mask = 0; mask <= 0777; ++mask) {
        umask(mask);
        keepPrivate();
        const QTemporaryDir folder;
        const QString made = folder.filePath(QStringLiteral("made/by us"));
        createFolder(made, SystemCalls::real());
        const QString byOthers = folder.filePath(QStringLiteral("made/by Qt"));
        ASSERT_TRUE(QDir().mkpath(byOthers));
        QFile file(byOthers + QStringLiteral("/file"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(modeOf(made), 0700U) << std::oct << mask;
        ASSERT_EQ(modeOf(byOthers), 0700U) << std::oct << mask;
        ASSERT_EQ(modeOf(file.fileName()), 0600U) << std::oct << mask;
    }
}

TEST_F(PrivacyTest, ACrashLeavesNoCoreFile) {
    keepPrivate();
    rlimit core{};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &core), 0);
    EXPECT_EQ(core.rlim_cur, 0U);
}

} // namespace
} // namespace lorvane
