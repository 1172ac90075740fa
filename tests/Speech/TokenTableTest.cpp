#include "Speech/TokenTable.h"
#include "Core/LocalizedError.h"
#include "Speech/KnownSentences.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

QString decoded(const std::vector<Token> &tokens) {
    QByteArray utf8;
    for (const Token token : tokens)
        utf8 += table().bytes(token);
    return QString::fromUtf8(utf8);
}

TEST(TokenTable, GivesBackWhatItHasEncoded) {
    for (const QString &text :
         {u"Hello, world!"_qs, u"Kowalczyk’s naïve Größe"_qs, u"日本 ♪ 🎙"_qs}) {
        EXPECT_EQ(decoded(table().encode(text)), u' ' + text);
    }
}

TEST(TokenTable, SpellsCommonWordsWithOneToken) {
    EXPECT_EQ(table().encode(u"the time"_qs).size(), 2U);
    EXPECT_EQ(table().encode(u"Hello"_qs), (std::vector<Token>{15043}));
}

TEST(TokenTable, HasNoTextForControlTokens) {
    EXPECT_TRUE(table().bytes(TokenTable::begin).isEmpty());
    EXPECT_TRUE(table().bytes(TokenTable::end).isEmpty());
    EXPECT_TRUE(table().bytes(32100).isEmpty());
    EXPECT_TRUE(table().bytes(-1).isEmpty());
}

TEST(TokenTable, RefusesAFileThatIsNone) {
    EXPECT_THROW(TokenTable(u"/nowhere/tokens.txt"_qs), LocalizedError);
}

} // namespace
} // namespace lorvane
