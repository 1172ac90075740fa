#include "Speech/PhraseTrie.h"

#include <algorithm>

namespace lorvane {

namespace {

auto lowerBound(auto &branches, Token token) {
    return std::lower_bound(
        branches.begin(), branches.end(), token,
        [](const PhraseTrie::Branch &branch, Token value) { return branch.token < value; });
}

} // namespace

void PhraseTrie::add(std::span<const Token> tokens, int phrase, float reward) {
    Node node = root;
    for (const Token token : tokens) {
        Node following = next(node, token);
        if (following == none) {
            following = static_cast<Node>(nodes_.size());
            nodes_.emplace_back();
            std::vector<Branch> &branches = nodes_[static_cast<std::size_t>(node)].branches;
            branches.insert(lowerBound(branches, token), {token, following});
        }
        node = following;
        float &highest = nodes_[static_cast<std::size_t>(node)].reward;
        highest = std::max(highest, reward);
    }
    int &end = nodes_[static_cast<std::size_t>(node)].phrase;
    if (node != root && end < 0)
        end = phrase;
}

PhraseTrie::Node PhraseTrie::next(Node node, Token token) const {
    const auto &branches = at(node).branches;
    const auto found = lowerBound(branches, token);
    return found != branches.end() && found->token == token ? found->node : none;
}

} // namespace lorvane
