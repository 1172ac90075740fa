#pragma once

#include "Speech/TokenTable.h"

#include <span>
#include <vector>

namespace lorvane {

/// Phrases as the tokens that spell them, merged at their common beginnings. Immutable once built:
/// any thread.
class PhraseTrie {
public:
    using Node = int;
    static constexpr Node root = 0;
    static constexpr Node none = -1;

    struct Branch {
        Token token;
        Node node;
    };

    /// Adds a phrase under a number from 0; a phrase that is already there keeps its first number.
    /// A text gains `reward` by each token of it, in units of the logarithm of a probability; where
    /// phrases begin alike, the highest reward counts.
    void add(std::span<const Token> tokens, int phrase, float reward);

    bool isEmpty() const { return nodes_[root].branches.empty(); }

    /// Where a token leads from a node, or `none`.
    Node next(Node node, Token token) const;

    /// What may follow a node.
    std::span<const Branch> branches(Node node) const { return at(node).branches; }

    /// The number of the phrase that ends at a node, or -1.
    int phrase(Node node) const { return at(node).phrase; }

    /// What a text gains by the token that leads to a node.
    float reward(Node node) const { return at(node).reward; }

private:
    struct Entry {
        std::vector<Branch> branches; ///< in the order of their tokens
        int phrase = -1;
        float reward = 0;
    };

    const Entry &at(Node node) const { return nodes_[static_cast<std::size_t>(node)]; }

    std::vector<Entry> nodes_{1};
};

} // namespace lorvane
