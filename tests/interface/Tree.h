#pragma once

#include <zorvan/interface/NSOutlineView.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// An item of a tree.
struct Node {
    std::string name;
    std::vector<std::shared_ptr<Node>> children;
};

inline std::shared_ptr<Node> node(std::string name,
                                  std::vector<std::shared_ptr<Node>> children = {}) {
    return std::make_shared<Node>(Node{std::move(name), std::move(children)});
}

/// Gives an outline a tree of names: a, which holds b and d, b, which holds c, and e, which holds
/// f.
struct Tree : zorvan::NSOutlineViewDataSource {
    const Node& of(const Item& item) const {
        return item ? *static_cast<const Node*>(item.get()) : root;
    }
    std::int64_t numberOfChildren(const zorvan::NSOutlineView&, const Item& item) const override {
        return static_cast<std::int64_t>(of(item).children.size());
    }
    Item child(const zorvan::NSOutlineView&, std::int64_t index, const Item& item) const override {
        return of(item).children[static_cast<std::size_t>(index)];
    }
    std::string text(const zorvan::NSOutlineView&, std::int64_t, const Item& item) const override {
        return of(item).name;
    }

    Node root{"root", {node("a", {node("b", {node("c")}), node("d")}), node("e", {node("f")})}};
    std::vector<std::shared_ptr<Node>>& top = root.children;
};
