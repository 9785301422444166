#pragma once

#include <zorvan/interface/NSSearchField.h>
#include <zorvan/interface/NSToolbarItem.h>

namespace zorvan {

/// A toolbar item that is a search field.
class NSSearchToolbarItem : public NSToolbarItem {
public:
    /// With a new, empty field.
    static std::shared_ptr<NSSearchToolbarItem> create(NSToolbarItemIdentifier itemIdentifier);
    /// For `create`.
    using NSToolbarItem::NSToolbarItem;

    /// Never null.
    const std::shared_ptr<NSSearchField>& searchField() const noexcept { return searchField_; }
    /// A new one for null.
    void setSearchField(std::shared_ptr<NSSearchField> searchField);

private:
    std::shared_ptr<NSSearchField> searchField_;
};

} // namespace zorvan
