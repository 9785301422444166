#pragma once

#include <zorvan/interface/NSToolbarItem.h>

#include <functional>
#include <memory>
#include <utility>

namespace zorvan {

/// One item of a set that a dynamic toolbar may show.
class DynamicToolbarItem {
public:
    using Update = std::function<void(DynamicToolbarItem&)>;

    static std::shared_ptr<DynamicToolbarItem> create(NSToolbarItemIdentifier identifier) {
        return std::make_shared<DynamicToolbarItem>(Key{}, std::move(identifier));
    }

    const NSToolbarItemIdentifier& identifier() const noexcept { return identifier_; }

    /// What is handed to the toolbar; null for an item that the toolbar makes itself.
    const std::shared_ptr<NSToolbarItem>& item() const noexcept { return item_; }
    void setItem(std::shared_ptr<NSToolbarItem> item) { item_ = std::move(item); }

    /// When true the item stays in its set but is not shown. It is still updated.
    bool removedFromBar() const noexcept { return removedFromBar_; }
    void setRemovedFromBar(bool removed) noexcept { removedFromBar_ = removed; }

    /// Called on every reload of the set; empty for nothing.
    const Update& update() const noexcept { return update_; }
    void setUpdate(Update update) { update_ = std::move(update); }

private:
    struct Key {};

public:
    DynamicToolbarItem(Key, NSToolbarItemIdentifier identifier)
        : identifier_(std::move(identifier)) {}

private:
    const NSToolbarItemIdentifier identifier_;
    std::shared_ptr<NSToolbarItem> item_;
    bool removedFromBar_ = false;
    Update update_;
};

} // namespace zorvan
