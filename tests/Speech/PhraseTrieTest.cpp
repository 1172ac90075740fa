#include "Speech/PhraseTrie.h"

#include <gtest/gtest.h>

namespace lorvane {
namespace {

TEST(PhraseTrie, LeadsToThePhraseThatItsTokensSpell) {
    PhraseTrie trie;
    trie.add(std::vector<Token>{7, 8, 9}, 0, 1);
    trie.add(std::vector<Token>{7, 5}, 1, 1);
    const PhraseTrie::Node seven = trie.next(PhraseTrie::root, 7);
    ASSERT_NE(seven, PhraseTrie::none);
    EXPECT_EQ(trie.phrase(seven), -1);
    EXPECT_EQ(trie.phrase(trie.next(seven, 5)), 1);
    EXPECT_EQ(trie.phrase(trie.next(trie.next(seven, 8), 9)), 0);
    EXPECT_EQ(trie.next(PhraseTrie::root, 8), PhraseTrie::none);
    ASSERT_EQ(trie.branches(seven).size(), 2U);
    EXPECT_EQ(trie.branches(seven)[0].token, 5);
}

TEST(PhraseTrie, KnowsAPhraseThatBeginsAnother) {
    PhraseTrie trie;
    trie.add(std::vector<Token>{1, 2, 3}, 0, 1);
    trie.add(std::vector<Token>{1, 2}, 1, 1);
    trie.add(std::vector<Token>{1, 2}, 2, 1);
    const PhraseTrie::Node node = trie.next(trie.next(PhraseTrie::root, 1), 2);
    EXPECT_EQ(trie.phrase(node), 1) << "the first of two that are spelt alike";
    EXPECT_EQ(trie.phrase(trie.next(node, 3)), 0);
}

TEST(PhraseTrie, IgnoresAPhraseWithoutTokens) {
    PhraseTrie trie;
    trie.add({}, 0, 1);
    EXPECT_TRUE(trie.isEmpty());
    EXPECT_EQ(trie.phrase(PhraseTrie::root), -1);
}

} // namespace
} // namespace lorvane
