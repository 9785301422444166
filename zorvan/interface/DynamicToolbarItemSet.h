#pragma once

#include <zorvan/interface/DynamicToolbarItemContainer.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// Items that a dynamic toolbar shows together, when its predicate says so.
class DynamicToolbarItemSet : public DynamicToolbarItemContainer {
public:
    using Predicate = std::function<bool()>;

    /// Always enabled unless a predicate is given.
    static std::shared_ptr<DynamicToolbarItemSet> create(Predicate isEnabled = {}) {
        return std::make_shared<DynamicToolbarItemSet>(Key{}, std::move(isEnabled));
    }

    using DynamicToolbarItemContainer::addItem;
    std::shared_ptr<DynamicToolbarItem>
    addItem(const std::shared_ptr<DynamicToolbarItem>& item) override {
        items_.push_back(item);
        return item;
    }

    const std::vector<std::shared_ptr<DynamicToolbarItem>>& items() const noexcept {
        return items_;
    }
    void setItems(std::vector<std::shared_ptr<DynamicToolbarItem>> items) {
        items_ = std::move(items);
    }
    const Predicate& isEnabled() const noexcept { return isEnabled_; }
    /// An empty one is always true.
    void setIsEnabled(Predicate isEnabled);

    /// Of all items, in order, also of those that are not shown.
    std::vector<NSToolbarItemIdentifier> identifiers() const;

private:
    struct Key {};

public:
    DynamicToolbarItemSet(Key, Predicate isEnabled) { setIsEnabled(std::move(isEnabled)); }

private:
    std::vector<std::shared_ptr<DynamicToolbarItem>> items_;
    Predicate isEnabled_;
};

} // namespace zorvan
