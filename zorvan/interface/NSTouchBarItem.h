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
inline constexpr NameLiteral NSTouchBarItemIdentifierFixedSpaceSmall =
    "NSTouchBarItemIdentifierFixedSpaceSmall";
inline constexpr NameLiteral NSTouchBarItemIdentifierFixedSpaceLarge =
    "NSTouchBarItemIdentifierFixedSpaceLarge";
inline constexpr NameLiteral NSTouchBarItemIdentifierFlexibleSpace =
    "NSTouchBarItemIdentifierFlexibleSpace";

/// One item of a touch bar; this kind shows nothing and takes room at most.
class NSTouchBarItem {
protected:
    struct Key {};

public:
    static std::shared_ptr<NSTouchBarItem> create(NSTouchBarItemIdentifier identifier) {
        return std::make_shared<NSTouchBarItem>(Key{}, std::move(identifier));
    }
    NSTouchBarItem(Key, NSTouchBarItemIdentifier identifier) : identifier_(std::move(identifier)) {}
    virtual ~NSTouchBarItem();
    NSTouchBarItem(const NSTouchBarItem&) = delete;
    NSTouchBarItem& operator=(const NSTouchBarItem&) = delete;

    const NSTouchBarItemIdentifier& identifier() const noexcept { return identifier_; }
    /// What the bar shows; null for a space.
    virtual std::shared_ptr<NSView> view() const;

private:
    NSTouchBarItemIdentifier identifier_;
};

/// A touch-bar item that shows a view.
class NSCustomTouchBarItem : public NSTouchBarItem {
public:
    static std::shared_ptr<NSCustomTouchBarItem> create(NSTouchBarItemIdentifier identifier) {
        return std::make_shared<NSCustomTouchBarItem>(Key{}, std::move(identifier));
    }
    using NSTouchBarItem::NSTouchBarItem;

    std::shared_ptr<NSView> view() const override { return view_; }
    void setView(std::shared_ptr<NSView> view) { view_ = std::move(view); }

private:
    std::shared_ptr<NSView> view_;
};

} // namespace zorvan
