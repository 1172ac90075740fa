#include "Speech/ModelFolder.h"
#include "Core/LocalizedError.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace lorvane {
namespace {

class ModelFolderTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(folder_.isValid()); }

    void write(const QString &name, const QByteArray &contents) {
        const QString path = folder_.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    void writeModel(const QString &name, const QByteArray &language,
                    const QByteArray &size = "base") {
        write(name + u"/manifest.json"_qs, R"({"engine": "moonshine", "languages": [")" + language +
                                               R"("], "tokens": "t",
                  "sizes": {")" + size + R"(": {"encoder": "e", "decoder": "d",
                                     "alignment": {"layer": 5, "head": 3, "offset": 0.5}}},
                  "files": {"t": {"bytes": 2}, "e": {"bytes": 3}, "d": {"bytes": 4}}})");
        write(name + u"/t"_qs, "tt");
        write(name + u"/e"_qs, "eee");
        write(name + u"/d"_qs, "dddd");
    }

    QTemporaryDir folder_;
};

TEST_F(ModelFolderTest, IsFoundByItsLanguage) {
    writeModel(u"one"_qs, "en");
    writeModel(u"two"_qs, "es");
    const auto model = ModelFolder::find(folder_.path(), u"es"_qs);
    ASSERT_TRUE(model);
    EXPECT_EQ(model->tokens, folder_.filePath(u"two/t"_qs));
    EXPECT_EQ(model->sizes[u"base"_qs].decoder, folder_.filePath(u"two/d"_qs));
    EXPECT_EQ(model->sizes[u"base"_qs].alignmentHead, 3);
    EXPECT_DOUBLE_EQ(model->sizes[u"base"_qs].alignmentOffset, 0.5);
    EXPECT_FALSE(ModelFolder::find(folder_.path(), u"de"_qs));
}

TEST_F(ModelFolderTest, IsTheBestOfThoseForALanguage) {
    writeModel(u"a small one"_qs, "en", "tiny");
    EXPECT_EQ(ModelFolder::find(folder_.path(), u"en"_qs)->sizes.keys(), QStringList(u"tiny"_qs));
    writeModel(u"b large one"_qs, "en", "base");
    writeModel(u"c large one"_qs, "en", "base");
    const auto model = ModelFolder::find(folder_.path(), u"en"_qs);
    EXPECT_EQ(model->tokens, folder_.filePath(u"b large one/t"_qs));
    QFile::remove(folder_.filePath(u"b large one/t"_qs));
    QFile::remove(folder_.filePath(u"c large one/t"_qs));
    EXPECT_EQ(ModelFolder::find(folder_.path(), u"en"_qs)->tokens,
              folder_.filePath(u"a small one/t"_qs));
}

TEST_F(ModelFolderTest, IsPassedOverWhenAFileIsMissingOrHasAnotherSize) {
    writeModel(u"one"_qs, "en");
    write(u"one/e"_qs, "eeee");
    EXPECT_FALSE(ModelFolder::find(folder_.path(), u"en"_qs));
    writeModel(u"two"_qs, "en");
    EXPECT_TRUE(ModelFolder::find(folder_.path(), u"en"_qs));
    QFile::remove(folder_.filePath(u"two/d"_qs));
    EXPECT_FALSE(ModelFolder::find(folder_.path(), u"en"_qs));
}

TEST_F(ModelFolderTest, IsPassedOverWhenItUsesAFileThatItsListDoesNotName) {
    writeModel(u"one"_qs, "en");
    write(u"e"_qs, "eee");
    QFile manifest(folder_.filePath(u"one/manifest.json"_qs));
    ASSERT_TRUE(manifest.open(QIODevice::ReadOnly));
    const QByteArray whole = manifest.readAll();
    for (const QByteArray foreign : {"../e", "/dev/zero", ""}) {
        QByteArray changed = whole;
        write(u"one/manifest.json"_qs,
              changed.replace("\"encoder\": \"e\"", "\"encoder\": \"" + foreign + '"'));
        EXPECT_FALSE(ModelFolder::find(folder_.path(), u"en"_qs)) << foreign.constData();
    }
}

TEST_F(ModelFolderTest, SaysWhichFileIsWrong) {
    writeModel(u"one"_qs, "en");
    write(u"one/e"_qs, "");
    try {
        ModelFolder::read(folder_.filePath(u"one"_qs));
        FAIL() << "it was read";
    } catch (const LocalizedError &error) {
        EXPECT_TRUE(error.localizedDescription().contains(folder_.filePath(u"one/e"_qs)));
    }
}

TEST_F(ModelFolderTest, IsNoneWithoutAManifestThatCanBeRead) {
    write(u"one/manifest.json"_qs, "{]");
    write(u"two/manifest.json"_qs, R"({"engine": "another", "languages": ["en"]})");
    EXPECT_FALSE(ModelFolder::find(folder_.path(), u"en"_qs));
    EXPECT_FALSE(ModelFolder::find(folder_.filePath(u"absent"_qs), u"en"_qs));
}

} // namespace
} // namespace lorvane
