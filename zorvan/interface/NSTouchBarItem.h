#pragma once

#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <memory>
#include <string>
#include <utility>

namespace zorvan {

/// What tells the items of a touch bar apart.
using NSTouchBarItemIdentifier = std::string;

/// Items that a touch bar makes itself.
/// A narrow gap.
inline constexpr NameLiteral NSTouchBarItemIdentifierFixedSpaceSmall =
    "NSTouchBarItemIdentifierFixedSpaceSmall";
/// A wide gap.
inline constexpr NameLiteral NSTouchBarItemIdentifierFixedSpaceLarge =
    "NSTouchBarItemIdentifierFixedSpaceLarge";
/// Takes all the room that is left.
inline constexpr NameLiteral NSTouchBarItemIdentifierFlexibleSpace =
    "NSTouchBarItemIdentifierFlexibleSpace";

/// One item of a touch bar; this kind shows nothing and takes room at most.
class NSTouchBarItem {
protected:
    /// What only items can name, so that they are made by `create`.
    struct Key {};

public:
    /// An item that shows nothing.
    static std::shared_ptr<NSTouchBarItem> create(NSTouchBarItemIdentifier identifier);
    /// For `create`.
    NSTouchBarItem(Key, NSTouchBarItemIdentifier identifier) : identifier_(std::move(identifier)) {}
    virtual ~NSTouchBarItem() = default;
    NSTouchBarItem(const NSTouchBarItem&) = delete;
    NSTouchBarItem& operator=(const NSTouchBarItem&) = delete;

    /// What tells the item from the others of its bar.
    const NSTouchBarItemIdentifier& identifier() const noexcept { return identifier_; }
    /// What the bar shows; null for a space.
    virtual std::shared_ptr<NSView> view() const { return nullptr; }

private:
    NSTouchBarItemIdentifier identifier_;
};

/// A touch-bar item that shows a view.
class NSCustomTouchBarItem : public NSTouchBarItem {
public:
    /// An item without a view.
    static std::shared_ptr<NSCustomTouchBarItem> create(NSTouchBarItemIdentifier identifier);
    /// For `create`.
    using NSTouchBarItem::NSTouchBarItem;

    std::shared_ptr<NSView> view() const override { return view_; }
    /// Shown from the next time that the bar is laid out.
    void setView(std::shared_ptr<NSView> view) { view_ = std::move(view); }

private:
    std::shared_ptr<NSView> view_;
};

} // namespace zorvan
