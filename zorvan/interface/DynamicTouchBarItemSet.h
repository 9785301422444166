#pragma once

#include <zorvan/interface/DynamicTouchBarItemContainer.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// Items that a dynamic touch bar shows together, when its predicate says so.
class DynamicTouchBarItemSet : public DynamicTouchBarItemContainer {
public:
    using Predicate = std::function<bool()>;

    /// Always enabled when the predicate is empty.
    static std::shared_ptr<DynamicTouchBarItemSet> create(Predicate isEnabled = {}) {
        return std::make_shared<DynamicTouchBarItemSet>(Key{}, std::move(isEnabled));
    }

    using DynamicTouchBarItemContainer::addItem;
    std::shared_ptr<DynamicTouchBarItem>
    addItem(const std::shared_ptr<DynamicTouchBarItem>& item) override {
        items_.push_back(item);
        return item;
    }

    const std::vector<std::shared_ptr<DynamicTouchBarItem>>& items() const noexcept {
        return items_;
    }
    void setItems(std::vector<std::shared_ptr<DynamicTouchBarItem>> items) {
        items_ = std::move(items);
    }
    const Predicate& isEnabled() const noexcept { return isEnabled_; }
    /// An empty one is always true.
    void setIsEnabled(Predicate isEnabled);

private:
    struct Key {};

public:
    DynamicTouchBarItemSet(Key, Predicate isEnabled) { setIsEnabled(std::move(isEnabled)); }

private:
    std::vector<std::shared_ptr<DynamicTouchBarItem>> items_;
    Predicate isEnabled_;
};

} // namespace zorvan
