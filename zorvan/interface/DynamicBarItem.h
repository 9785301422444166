#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zorvan {

/// One item of a set that a dynamic toolbar or touch bar may show. `Shown` is what the bar takes.
template <class Shown>
class DynamicBarItem {
    struct Key {};

public:
    /// What is called with the item.
    using Update = std::function<void(DynamicBarItem&)>;

    /// Nothing to hand to the bar yet, and no update.
    static std::shared_ptr<DynamicBarItem> create(std::string identifier) {
        return std::make_shared<DynamicBarItem>(Key{}, std::move(identifier));
    }
    /// For `create`.
    DynamicBarItem(Key, std::string identifier) : identifier_(std::move(identifier)) {}

    /// What tells it from the other items of its bar.
    const std::string& identifier() const noexcept { return identifier_; }

    /// What is handed to the bar; null for an item that the bar makes itself.
    /// @{
    const std::shared_ptr<Shown>& item() const noexcept { return item_; }
    void setItem(std::shared_ptr<Shown> item) { item_ = std::move(item); }
    /// @}

    /// When true the item stays in its set but is not shown. It is still updated.
    /// @{
    bool removedFromBar() const noexcept { return removedFromBar_; }
    void setRemovedFromBar(bool removed) noexcept { removedFromBar_ = removed; }
    /// @}

    /// Called on every reload of the set; empty for nothing.
    /// @{
    const Update& update() const noexcept { return update_; }
    void setUpdate(Update update) { update_ = std::move(update); }
    /// @}

private:
    const std::string identifier_;
    std::shared_ptr<Shown> item_;
    bool removedFromBar_ = false;
    Update update_;
};

} // namespace zorvan
