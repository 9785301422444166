#pragma once

#include <zorvan/interface/NSToolbar.h>

#include <memory>
#include <string>

namespace zorvan {

/// A toolbar that shows nothing but a flexible space.
class EmptyToolbar : public NSToolbar, public NSToolbarDelegate {
public:
    /// A toolbar that no window shows yet.
    static std::shared_ptr<EmptyToolbar> create(std::string identifier = "EmptyToolbar");
    /// For `create`.
    using NSToolbar::NSToolbar;

    // As its own delegate.

    /// A new plain item, whatever the identifier.
    std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier,
                                 bool willBeInsertedIntoToolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;
};

} // namespace zorvan
