#pragma once

#include <zorvan/interface/NSTouchBarItem.h>

#include <functional>
#include <memory>
#include <utility>

namespace zorvan {

/// One item of a set that a dynamic touch bar may show.
class DynamicTouchBarItem {
public:
    using Update = std::function<void(DynamicTouchBarItem&)>;

    static std::shared_ptr<DynamicTouchBarItem> create(NSTouchBarItemIdentifier identifier) {
        return std::make_shared<DynamicTouchBarItem>(Key{}, std::move(identifier));
    }

    const NSTouchBarItemIdentifier& identifier() const noexcept { return identifier_; }

    /// What is handed to the touch bar; null for an item that the bar makes itself.
    const std::shared_ptr<NSTouchBarItem>& item() const noexcept { return item_; }
    void setItem(std::shared_ptr<NSTouchBarItem> item) { item_ = std::move(item); }

    /// When true the item stays in its set but is not shown. It is still updated.
    bool removedFromBar() const noexcept { return removedFromBar_; }
    void setRemovedFromBar(bool removed) noexcept { removedFromBar_ = removed; }

    /// Called on every reload of the set; empty for nothing.
    const Update& update() const noexcept { return update_; }
    void setUpdate(Update update) { update_ = std::move(update); }

private:
    struct Key {};

public:
    DynamicTouchBarItem(Key, NSTouchBarItemIdentifier identifier)
        : identifier_(std::move(identifier)) {}

private:
    const NSTouchBarItemIdentifier identifier_;
    std::shared_ptr<NSTouchBarItem> item_;
    bool removedFromBar_ = false;
    Update update_;
};

} // namespace zorvan
