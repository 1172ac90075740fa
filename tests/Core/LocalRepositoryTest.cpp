#include "Core/LocalRepository.h"

#include "Core/ApplicationSupport.h"
#include "Core/FileError.h"
#include "Core/LibraryFormat.h"
#include "Core/Printing.h"
#include "Core/SampleLibrary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace lorvane {
namespace {

using namespace Qt::StringLiterals;

class LibraryFile : public testing::Test {
protected:
    QString path(const QString &name = u"Lorvane/library.json"_s) const {
        return folder_.filePath(name);
    }

    void write(const QByteArray &bytes, const QString &name = u"library.json"_s) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    QByteArray read(const QString &name) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    static mode_t mode(const QString &path) {
        struct stat status;
        EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode & 07777;
    }

    LocalRepository repository(const QString &name = u"library.json"_s) const {
        return LocalRepository(path(name));
    }

    QTemporaryDir folder_;
};

TEST_F(LibraryFile, IsAnEmptyLibraryWhenMissingAndNothingIsCreated) {
    EXPECT_EQ(repository(u"Lorvane/library.json"_s).load(), AppSnapshot());
    EXPECT_TRUE(QDir(folder_.path()).isEmpty());
}

TEST_F(LibraryFile, IsAnEmptyLibraryWhereAFolderOnTheWayIsAFile) {
    write("x", u"Lorvane"_s);
    EXPECT_EQ(repository(u"Lorvane/library.json"_s).load(), AppSnapshot());
}

TEST_F(LibraryFile, AppearsPrivatelyWithTheFirstSave) {
    const LocalRepository library = repository(u"new/Lorvane/library.json"_s);
    library.save(samples::library());
    EXPECT_EQ(mode(path(u"new"_s)), 0700u);
    EXPECT_EQ(mode(path(u"new/Lorvane"_s)), 0700u);
    EXPECT_EQ(mode(library.fileURL()), 0600u);
    EXPECT_EQ(read(u"new/Lorvane/library.json"_s), samples::libraryFile());
    EXPECT_EQ(QDir(path(u"new/Lorvane"_s)).entryList(QDir::Files | QDir::Hidden),
              QStringList(u"library.json"_s));
    EXPECT_EQ(library.load(), samples::library());
}

TEST_F(LibraryFile, LeavesAnExistingFolderAsItIs) {
    ASSERT_EQ(::chmod(QFile::encodeName(folder_.path()).constData(), 0755), 0);
    repository().save({});
    EXPECT_EQ(mode(folder_.path()), 0755u);
}

TEST_F(LibraryFile, IsPrivateAgainAfterASave) {
    write("{}");
    ASSERT_EQ(::chmod(QFile::encodeName(path(u"library.json"_s)).constData(), 0644), 0);
    repository().save({});
    EXPECT_EQ(mode(path(u"library.json"_s)), 0600u);
}

TEST_F(LibraryFile, OfVersionOneLoadsAsTheCurrentAndKeepsItsBytesUntilTheNextSave) {
    QByteArray old = samples::libraryFile();
    old.replace("\"schemaVersion\" : 2", "\"schemaVersion\" : 1");
    old.replace("\"aliases\" : [\n        \"cube control\",\n        \"cube cuddle\"\n      ],",
                "");
    old.replace("\"vocabulary\" : [", R"("vocabulary" : [
      { "id" : "26FD2706-8BAF-433B-82EB-8C7FADA847DA", "phrase" : "cube", "replacement" : "kubectl" },)");
    write(old);
    const AppSnapshot snapshot = repository().load();
    EXPECT_EQ(snapshot.schemaVersion, 2);
    ASSERT_EQ(snapshot.vocabulary.size(), 1);
    EXPECT_EQ(snapshot.vocabulary.first().matchingPhrases(),
              QStringList({u"cube"_s, u"kube ctl"_s}));
    EXPECT_EQ(read(u"library.json"_s), old);
    repository().save(snapshot);
    EXPECT_TRUE(read(u"library.json"_s).contains("\"schemaVersion\" : 2"));
}

TEST_F(LibraryFile, OfAnotherVersionIsRefusedAndLeftUntouched) {
    for (const qint64 version :
         {qint64(3), qint64(0), qint64(-1), qint64(INT64_MAX), qint64(INT64_MIN)}) {
        const QByteArray file = encodeLibrary({.schemaVersion = version});
        write(file);
        try {
            repository().load();
            FAIL() << "Version " << version << " was read";
        } catch (const LocalRepository::RepositoryError &error) {
            EXPECT_EQ(error.version(), version);
            EXPECT_EQ(
                error.localizedDescription(),
                u"Library version %1 is unsupported. Your existing library was left untouched."_s
                    .arg(version));
        }
        EXPECT_EQ(read(u"library.json"_s), file);
    }
}

TEST_F(LibraryFile, OfALaterVersionWithoutAKnownKeyFailsInDecoding) {
    write(
        R"({"schemaVersion" : 3, "history" : [], "vocabulary" : [], "snippets" : [], "scratchpad" : ""})");
    EXPECT_THROW(repository().load(), DecodingError);
}

TEST_F(LibraryFile, ThatIsEmptyOrNoJsonFailsInDecoding) {
    for (const QByteArray bytes : {"", " ", "null", "not json", "{}"}) {
        write(bytes);
        EXPECT_THROW(repository().load(), DecodingError) << bytes.toStdString();
        EXPECT_EQ(read(u"library.json"_s), bytes);
    }
}

TEST_F(LibraryFile, ThatCantBeReadFailsAtTheRead) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"library.json"_s));
    try {
        repository().load();
        FAIL();
    } catch (const FileError &error) {
        EXPECT_EQ(error.code(), EISDIR);
        EXPECT_EQ(error.localizedDescription(),
                  u"“%1” could not be read: Is a directory."_s.arg(path(u"library.json"_s)));
    }
}

TEST_F(LibraryFile, ThatIsAPipeOrADeviceFailsAtOnce) {
    const QByteArray name = QFile::encodeName(path(u"library.json"_s));
    ASSERT_EQ(::mkfifo(name.constData(), 0600), 0);
    const auto fails = [&] {
        try {
            repository().load();
            return QString();
        } catch (const FileError &error) {
            return error.localizedDescription();
        }
    };
    const QString refusal =
        u"“%1” is not a regular file: Operation not supported."_s.arg(path(u"library.json"_s));
    EXPECT_EQ(fails(), refusal);
    ASSERT_EQ(::unlink(name.constData()), 0);
    ASSERT_EQ(::symlink("/dev/zero", name.constData()), 0);
    EXPECT_EQ(fails(), refusal);
}

TEST_F(LibraryFile, ThatOneMayNotReadFailsAndStandsUntouched) {
    const uid_t user = ::geteuid();
    const QByteArray file = encodeLibrary({});
    write(file);
    const QByteArray name = QFile::encodeName(path(u"library.json"_s));
    ASSERT_EQ(::chmod(name.constData(), 0), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(folder_.path()).constData(), 0755), 0);
    if (user == 0) { // who may read everything
        ASSERT_EQ(::seteuid(65534), 0);
    }
    EXPECT_THROW(repository().load(), FileError);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod(name.constData(), 0600), 0);
    EXPECT_EQ(read(u"library.json"_s), file);
}

TEST_F(LibraryFile, ThatOneMayNotLookForIsNotTakenForMissing) {
    const uid_t user = ::geteuid();
    const QByteArray folder = QFile::encodeName(folder_.path());
    ASSERT_EQ(::chmod(folder.constData(), 0), 0);
    if (user == 0) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    EXPECT_THROW(repository().load(), FileError);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod(folder.constData(), 0700), 0);
}

TEST_F(LibraryFile, IsFollowedThroughSymbolicLinksThatStayLinks) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(u"real/deep"_s));
    write("{}", u"real/deep/file.json"_s);
    ASSERT_TRUE(QFile::link(u"deep/file.json"_s, path(u"real/second.json"_s)));
    ASSERT_TRUE(QFile::link(path(u"real/second.json"_s), path(u"library.json"_s)));
    repository().save(samples::library());
    EXPECT_TRUE(QFileInfo(path(u"library.json"_s)).isSymLink());
    EXPECT_TRUE(QFileInfo(path(u"real/second.json"_s)).isSymLink());
    EXPECT_EQ(read(u"real/deep/file.json"_s), samples::libraryFile());
    EXPECT_EQ(mode(path(u"real/deep/file.json"_s)), 0600u);
    EXPECT_EQ(repository().load(), samples::library());
}

TEST_F(LibraryFile, IsCreatedWhereALinkLeadsToNothing) {
    ASSERT_TRUE(QFile::link(u"elsewhere.json"_s, path(u"library.json"_s)));
    EXPECT_EQ(repository().load(), AppSnapshot());
    repository().save(samples::library());
    EXPECT_TRUE(QFileInfo(path(u"library.json"_s)).isSymLink());
    EXPECT_EQ(read(u"elsewhere.json"_s), samples::libraryFile());
}

TEST_F(LibraryFile, BehindALoopOfLinksFailsBothWays) {
    ASSERT_TRUE(QFile::link(u"b"_s, path(u"a"_s)));
    ASSERT_TRUE(QFile::link(u"a"_s, path(u"b"_s)));
    EXPECT_THROW(repository(u"a"_s).load(), FileError);
    EXPECT_THROW(repository(u"a"_s).save({}), FileError);
}

TEST_F(LibraryFile, IsNotSavedBelowAFile) {
    write("x", u"Lorvane"_s);
    EXPECT_THROW(repository(u"Lorvane/library.json"_s).save({}), FileError);
    EXPECT_EQ(read(u"Lorvane"_s), "x");
}

TEST_F(LibraryFile, IsNotSavedOverAFolder) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"library.json"_s));
    EXPECT_THROW(repository().save({}), FileError);
    EXPECT_EQ(
        QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList(u"library.json"_s));
}

TEST_F(LibraryFile, StandsWhereTheSnapshotCantBeEncoded) {
    write("old");
    EXPECT_THROW(repository().save({.history = {{.createdAt = QDateTime(), .text = u""_s}}}),
                 EncodingError);
    EXPECT_EQ(read(u"library.json"_s), "old");
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList(u"library.json"_s));
}

TEST_F(LibraryFile, LosesTheFractionOfASecondOnly) {
    const QDateTime instant(QDate(2026, 3, 14), QTime(12, 0, 0, 750), Qt::UTC);
    repository().save({.history = {{.createdAt = instant, .text = u"a"_s}}});
    EXPECT_EQ(repository().load().history.first().createdAt, instant.addMSecs(-750));
}

TEST_F(LibraryFile, MayBeLargerThanAnyBuffer) {
    AppSnapshot snapshot{.scratchpad = u"/\u65E5"_s.repeated(100'000)};
    for (int i = 0; i < 3000; ++i)
        snapshot.history.append({.createdAt = QDateTime(QDate(2026, 3, 14), QTime(9, 26), Qt::UTC),
                                 .text = u"word "_s.repeated(i % 100)});
    repository().save(snapshot);
    EXPECT_EQ(read(u"library.json"_s), encodeLibrary(snapshot));
    EXPECT_EQ(repository().load(), snapshot);
}

TEST_F(LibraryFile, IsReadAgainAfterEverySave) {
    const LocalRepository library = repository();
    for (int i = 0; i < 3; ++i) {
        library.save({.scratchpad = QString::number(i)});
        EXPECT_EQ(library.load().scratchpad, QString::number(i));
    }
}

TEST_F(LibraryFile, MayHaveANameOfAnyScript) {
    const LocalRepository library = repository(u"B\u00FCcher \u65E5\u672C/library.json"_s);
    library.save(samples::library());
    EXPECT_EQ(library.load(), samples::library());
}

class UserData : public LibraryFile {
protected:
    UserData() : old_(qgetenv("XDG_DATA_HOME")) {}
    void TearDown() override {
        if (old_.isNull())
            qunsetenv("XDG_DATA_HOME");
        else
            qputenv("XDG_DATA_HOME", old_);
    }

private:
    QByteArray old_;
};

TEST_F(UserData, FolderIsCreatedPrivatelyWhenMissing) {
    qputenv("XDG_DATA_HOME", QFile::encodeName(path(u"some/data"_s)));
    EXPECT_EQ(applicationSupportDirectory(), path(u"some/data"_s));
    EXPECT_EQ(mode(path(u"some/data"_s)), 0700u);
    EXPECT_EQ(applicationSupportDirectory(), path(u"some/data"_s));
}

TEST_F(UserData, HoldsTheDefaultLibraryWhoseFolderWaitsForTheFirstSave) {
    qputenv("XDG_DATA_HOME", QFile::encodeName(path(u"data"_s)));
    const LocalRepository library = LocalRepository::applicationDefault();
    EXPECT_EQ(library.fileURL(), path(u"data/Lorvane/library.json"_s));
    EXPECT_EQ(library.load(), AppSnapshot());
    EXPECT_TRUE(QDir(path(u"data"_s)).isEmpty());
    library.save(samples::library());
    EXPECT_EQ(mode(path(u"data/Lorvane"_s)), 0700u);
    EXPECT_EQ(LocalRepository::applicationDefault().load(), samples::library());
}

TEST_F(UserData, FolderThatCantBeCreatedIsAFailure) {
    write("x", u"file"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(path(u"file/data"_s)));
    EXPECT_THROW(LocalRepository::applicationDefault(), FileError);
}

} // namespace
} // namespace lorvane
