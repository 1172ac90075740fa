#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace lorvane {

/// A file system of its own on a folder.
class SmallDisk {
public:
    SmallDisk(const QString &folder, const char *options, unsigned long flags = 0)
        : mountPoint_(QFile::encodeName(folder)) {
        // Who isn't root may mount in a name space of his own.
        if (::geteuid() != 0)
            ::unshare(CLONE_NEWUSER | CLONE_NEWNS);
        EXPECT_EQ(::mount("tmpfs", mountPoint_.constData(), "tmpfs", flags, options), 0)
            << "a small disk can't be mounted";
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;
    ~SmallDisk() { ::umount2(mountPoint_.constData(), MNT_DETACH); }

private:
    QByteArray mountPoint_;
};

} // namespace lorvane
