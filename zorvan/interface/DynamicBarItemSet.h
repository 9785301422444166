#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

/// Items that a dynamic toolbar or touch bar shows together, when the predicate of the set says so.
/// `Container` has the builders of such items.
template <class Item, class Container>
class DynamicBarItemSet : public Container {
    struct Key {};

public:
    /// Whether the set may be shown.
    using Predicate = std::function<bool()>;

    /// Always enabled unless a predicate is given.
    static std::shared_ptr<DynamicBarItemSet> create(Predicate isEnabled = {}) {
        return std::make_shared<DynamicBarItemSet>(Key{}, std::move(isEnabled));
    }
    /// For `create`.
    DynamicBarItemSet(Key, Predicate isEnabled) { setIsEnabled(std::move(isEnabled)); }

    using Container::addItem;
    /// Appends the item, and returns it.
    std::shared_ptr<Item> addItem(const std::shared_ptr<Item>& item) override {
        return items_.emplace_back(item); // which may be one of the set's, and have moved
    }

    /// In the order in which the bar shows them.
    /// @{
    const std::vector<std::shared_ptr<Item>>& items() const noexcept { return items_; }
    void setItems(std::vector<std::shared_ptr<Item>> items) { items_ = std::move(items); }
    /// @}

    /// Asked on every reload.
    const Predicate& isEnabled() const noexcept { return isEnabled_; }
    /// An empty one is always true.
    void setIsEnabled(Predicate isEnabled) {
        isEnabled_ = isEnabled ? std::move(isEnabled) : [] { return true; };
    }

    /// Of all items, in order, also of those that are not shown.
    std::vector<std::string> identifiers() const {
        std::vector<std::string> identifiers;
        for (const auto& item : items_)
            identifiers.push_back(item->identifier());
        return identifiers;
    }

private:
    std::vector<std::shared_ptr<Item>> items_;
    Predicate isEnabled_;
};

} // namespace zorvan
