#include "Core/FileError.h"
#include "Core/LocalRepository.h"
#include "Core/Printing.h"
#include "Core/SampleLibrary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

/// Runs the real calls up to one of them, which fails, or from which on nothing happens any more,
/// as if the process had died there.
class FaultyCalls : public SystemCalls {
public:
    enum class Fault { fails, stops };

    FaultyCalls(int faultyCall, Fault fault, int code = EIO)
        : faultyCall_(faultyCall), fault_(fault), code_(code) {}

    bool wasReached() const { return count_ >= faultyCall_; }
    int count() const { return count_; }

    int mkdir(const char *path, mode_t mode) override {
        return faults() ? -1 : SystemCalls::mkdir(path, mode);
    }
    ssize_t readlink(const char *path, char *buffer, std::size_t size) override {
        return faults() ? -1 : SystemCalls::readlink(path, buffer, size);
    }
    int open(const char *path, int flags) override {
        return faults() ? -1 : SystemCalls::open(path, flags);
    }
    int mkostemp(char *name, int flags) override {
        return faults() ? -1 : SystemCalls::mkostemp(name, flags);
    }
    ssize_t write(int file, const void *bytes, std::size_t size) override {
        const std::size_t part = std::min(size, std::size_t(500));
        if (count_ + 1 == faultyCall_)
            SystemCalls::write(file, bytes, part / 2); // torn
        return faults() ? -1 : SystemCalls::write(file, bytes, part);
    }
    int fsync(int file) override { return faults() ? -1 : SystemCalls::fsync(file); }
    int close(int file) override {
        // Closed in any case, as the system does.
        const int result = SystemCalls::close(file);
        return faults() ? -1 : result;
    }
    int rename(const char *from, const char *to) override {
        return faults() ? -1 : SystemCalls::rename(from, to);
    }
    int chmod(const char *path, mode_t mode) override {
        return faults() ? -1 : SystemCalls::chmod(path, mode);
    }
    int unlink(const char *path) override { return faults() ? -1 : SystemCalls::unlink(path); }

private:
    bool faults() {
        ++count_;
        const bool result =
            count_ == faultyCall_ || (fault_ == Fault::stops && count_ > faultyCall_);
        if (result)
            errno = code_;
        return result;
    }

    int count_ = 0;
    int faultyCall_;
    Fault fault_;
    int code_;
};

/// What stands at the file's place before the save.
enum class Before { nothing, noFolder, file, link };

class EveryCall : public testing::TestWithParam<std::tuple<Before, FaultyCalls::Fault, int>> {
protected:
    /// Runs one save in a fresh folder; false once the fault lies behind its last call.
    bool save(int faultyCall) {
        const auto [before, fault, code] = GetParam();
        const QTemporaryDir folder;
        const QString path =
            folder.filePath(before == Before::noFolder ? u"a/b/library.json"_s : u"library.json"_s);
        const QString target = before == Before::link ? folder.filePath(u"real/file.json"_s) : path;
        if (before == Before::link) {
            QDir(folder.path()).mkdir(u"real"_s);
            EXPECT_TRUE(QFile::link(u"real/file.json"_s, path));
        }
        const bool existed = before == Before::file || before == Before::link;
        if (existed)
            LocalRepository(path).save(old_);

        FaultyCalls calls(faultyCall, fault, code);
        bool succeeded = false;
        try {
            LocalRepository(path, calls).save(new_);
            succeeded = true;
        } catch (const FileError &error) {
            EXPECT_EQ(error.code(), code);
            EXPECT_TRUE(error.localizedDescription().contains(qt_error_string(code)));
        }
        if (!calls.wasReached()) {
            EXPECT_TRUE(succeeded);
            return false;
        }
        SCOPED_TRACE(testing::Message() << "call " << faultyCall << " of " << calls.count());

        const AppSnapshot left = LocalRepository(path).load();
        EXPECT_TRUE(left == new_ || left == (existed ? old_ : AppSnapshot()));
        EXPECT_TRUE(!succeeded || left == new_);
        EXPECT_EQ(QFileInfo(path).isSymLink(), before == Before::link);
        const QStringList names =
            QFileInfo(target).dir().entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
        if (fault == FaultyCalls::Fault::fails) {
            EXPECT_TRUE(names.isEmpty() || names == QStringList(QFileInfo(target).fileName()))
                << names.join(u' ').toStdString();
        }
        return true;
    }

    AppSnapshot old_ = samples::library();
    AppSnapshot new_{.scratchpad = u"new "_s.repeated(500)};
};

TEST_P(EveryCall, LeavesTheWholeOldOrTheWholeNewFile) {
    int call = 1;
    while (save(call))
        ++call;
    EXPECT_GT(call, 10);
}

std::string caseName(const testing::TestParamInfo<EveryCall::ParamType> &tested) {
    constexpr const char *places[] = {"OfANewFile", "OfANewFolder", "OverAFile", "BehindALink"};
    constexpr const char *faults[] = {"Failing", "Stopping"};
    const auto [before, fault, code] = tested.param;
    return std::string(places[static_cast<int>(before)]) + faults[static_cast<int>(fault)] +
           "With" + std::to_string(code);
}

INSTANTIATE_TEST_SUITE_P(
    Saving, EveryCall,
    testing::Combine(testing::Values(Before::nothing, Before::noFolder, Before::file, Before::link),
                     testing::Values(FaultyCalls::Fault::fails, FaultyCalls::Fault::stops),
                     testing::Values(EIO, ENOSPC, EACCES)),
    caseName);

/// Lets one kind of call fail in one way.
class OneFault : public SystemCalls {
public:
    int interruptedWrites = 0, interruptedSyncs = 0, chmods = 0, syncs = 0;
    int failingChmod = 0, failingSync = 0, failure = 0;
    bool isFull = false, failsToClose = false;

    ssize_t write(int file, const void *bytes, std::size_t size) override {
        if (isFull)
            return 0;
        if (interruptedWrites-- > 0) {
            errno = EINTR;
            return -1;
        }
        return SystemCalls::write(file, bytes, std::min(size, std::size_t(7)));
    }
    int fsync(int file) override {
        if (interruptedSyncs-- > 0) {
            errno = EINTR;
            return -1;
        }
        if (++syncs == failingSync) {
            errno = failure;
            return -1;
        }
        return SystemCalls::fsync(file);
    }
    int close(int file) override {
        const int result = SystemCalls::close(file);
        if (!failsToClose)
            return result;
        errno = EDQUOT;
        return -1;
    }
    int chmod(const char *path, mode_t mode) override {
        if (++chmods == failingChmod) {
            errno = EPERM;
            return -1;
        }
        return SystemCalls::chmod(path, mode);
    }
};

class Saving : public testing::Test {
protected:
    AppSnapshot left() const { return LocalRepository(path_).load(); }
    QStringList names() const { return QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"library.json"_s);
    OneFault calls_;
    LocalRepository repository_{path_, calls_};
};

TEST_F(Saving, GoesOnAfterShortAndInterruptedCalls) {
    calls_.interruptedWrites = 3;
    calls_.interruptedSyncs = 2;
    repository_.save(samples::library());
    EXPECT_EQ(left(), samples::library());
}

TEST_F(Saving, FailsWhereTheDeviceTakesNothingMore) {
    LocalRepository(path_).save(samples::library());
    calls_.isFull = true;
    try {
        repository_.save({});
        FAIL();
    } catch (const FileError &error) {
        EXPECT_EQ(error.localizedDescription(),
                  u"“%1” could not be written: No space left on device."_s.arg(path_));
    }
    EXPECT_EQ(left(), samples::library());
    EXPECT_EQ(names(), QStringList(u"library.json"_s));
}

TEST_F(Saving, FailsWhereClosingReportsAnError) {
    calls_.failsToClose = true;
    EXPECT_THROW(repository_.save({}), FileError);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Saving, FailsWhereThePermissionsCantBeSetThoughTheNewFileIsThere) {
    calls_.failingChmod = 1;
    try {
        repository_.save(samples::library());
        FAIL();
    } catch (const FileError &error) {
        EXPECT_EQ(error.code(), EPERM);
    }
    EXPECT_EQ(left(), samples::library());
}

TEST_F(Saving, FailsWhereTheFileCantBeSynced) {
    calls_.failingSync = 1;
    calls_.failure = EIO;
    EXPECT_THROW(repository_.save({}), FileError);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Saving, FailsWhereTheFolderCantBeSyncedThoughTheNewFileIsThere) {
    calls_.failingSync = 2;
    calls_.failure = EIO;
    EXPECT_THROW(repository_.save(samples::library()), FileError);
    EXPECT_EQ(left(), samples::library());
}

TEST_F(Saving, TakesAFolderThatKnowsNoSyncingForSynced) {
    calls_.failingSync = 2;
    calls_.failure = EINVAL;
    repository_.save(samples::library());
    EXPECT_EQ(left(), samples::library());
}

TEST_F(Saving, SyncsTheFileAndItsFolder) {
    repository_.save(samples::library());
    EXPECT_EQ(calls_.syncs, 2);
}

} // namespace
} // namespace lorvane
