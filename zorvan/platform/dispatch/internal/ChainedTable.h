#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// A hash table that owns nodes with a `key`, the `hash` of it, and the `next` node of the chain.
///
/// It has a power of two of chains: looking up takes a mask, where the standard table divides,
/// which costs more than all the rest of a look-up.
template <class Node>
class ChainedTable {
public:
    ChainedTable() : chains_(8) {}

    /// Null when there is none.
    template <class Key>
    Node* find(Key key, std::size_t hash) const noexcept {
        Node* node = chains_[chain(hash)].get();
        while (node && !(node->key == key))
            node = node->next.get();
        return node;
    }

    /// There must be none of that key yet.
    Node& insert(std::unique_ptr<Node> node) {
        if (count_ == chains_.size())
            grow();
        ++count_;
        return link(std::move(node));
    }

    /// The node must be in the table.
    std::unique_ptr<Node> take(const Node& node) noexcept {
        std::unique_ptr<Node>* place = &chains_[chain(node.hash)];
        while (place->get() != &node)
            place = &(*place)->next;
        std::unique_ptr<Node> taken = std::move(*place);
        *place = std::move(taken->next);
        --count_;
        return taken;
    }

private:
    std::size_t chain(std::size_t hash) const noexcept { return hash & (chains_.size() - 1); }

    Node& link(std::unique_ptr<Node> node) noexcept {
        std::unique_ptr<Node>& first = chains_[chain(node->hash)];
        node->next = std::exchange(first, nullptr);
        first = std::move(node);
        return *first;
    }

    void grow() {
        std::vector<std::unique_ptr<Node>> before(chains_.size() * 2);
        before.swap(chains_);
        for (std::unique_ptr<Node>& first : before)
            while (first) {
                std::unique_ptr<Node> node = std::move(first);
                first = std::move(node->next);
                link(std::move(node));
            }
    }

    std::vector<std::unique_ptr<Node>> chains_;
    std::size_t count_ = 0;
};

} // namespace zorvan
