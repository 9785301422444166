#pragma once

#include <zorvan/interface/NSTouchBarItem.h>

#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

class NSTouchBar;
class NSWindow;

/// Gives a touch bar its items.
class NSTouchBarDelegate {
public:
    virtual ~NSTouchBarDelegate() = default;
    /// Null for an item that there is not.
    virtual std::shared_ptr<NSTouchBarItem>
    touchBarMakeItemForIdentifier(NSTouchBar& touchBar,
                                  const NSTouchBarItemIdentifier& identifier) = 0;
};

/// A strip of controls at hand for what the user does, shown below the window.
///
/// Each time its identifiers are set it asks its delegate, which it does not keep alive, for the
/// items, and makes the spaces itself when the delegate gives none. Main thread only.
class NSTouchBar : public std::enable_shared_from_this<NSTouchBar> {
    struct Key {};
    friend class NSWindow;

public:
    /// Without items.
    static std::shared_ptr<NSTouchBar> create();
    /// For `create`.
    explicit NSTouchBar(Key) {}

    /// What the bar shows, in order. Setting them asks the delegate for the items anew.
    /// @{
    const std::vector<NSTouchBarItemIdentifier>& defaultItemIdentifiers() const noexcept {
        return defaultItemIdentifiers_;
    }
    void setDefaultItemIdentifiers(std::vector<NSTouchBarItemIdentifier> identifiers);
    /// @}
    /// Whom it asks for items, from the next time that identifiers are set; null for none, and once
    /// it has gone.
    /// @{
    std::shared_ptr<NSTouchBarDelegate> delegate() const noexcept { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<NSTouchBarDelegate>& delegate) { delegate_ = delegate; }
    /// @}

    /// The items that there are for the identifiers, in order.
    const std::vector<std::shared_ptr<NSTouchBarItem>>& items() const noexcept { return items_; }
    /// The shown item of that identifier; null when there is none.
    std::shared_ptr<NSTouchBarItem> item(const NSTouchBarItemIdentifier& forIdentifier) const;

    /// The window that shows the bar; null for none.
    std::shared_ptr<NSWindow> window() const noexcept { return window_.lock(); }

private:
    void comeInto(const std::shared_ptr<NSWindow>& window) { window_ = window; }
    std::shared_ptr<NSTouchBarItem> makeItem(const NSTouchBarItemIdentifier& identifier);

    std::vector<NSTouchBarItemIdentifier> defaultItemIdentifiers_;
    std::vector<std::shared_ptr<NSTouchBarItem>> items_;
    std::weak_ptr<NSTouchBarDelegate> delegate_;
    std::weak_ptr<NSWindow> window_;
};

} // namespace zorvan
