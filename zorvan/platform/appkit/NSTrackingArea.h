#pragma once

#include <zorvan/numbers-geometry/CGRect.h>

#include <any>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zorvan {

class NSView;

/// A rectangle of a view, in the view's own coordinates, whose owner is told when the mouse comes
/// and goes. It counts from when it is added to the view. An area never changes.
class NSTrackingArea {
    struct Key {};

public:
    /// A set of options. Without one of those that say when an area is active, it never is.
    struct Options {
        /// A bit for each option.
        std::uint64_t rawValue = 0;

        /// Which events are told of, and when the area is active: always, or while the application
        /// is the active one.
        /// @{
        static const Options mouseEnteredAndExited, mouseMoved, activeInActiveApp, activeAlways;
        /// @}

        /// Whether every option of `other` is set here.
        constexpr bool contains(Options other) const noexcept {
            return (rawValue & other.rawValue) == other.rawValue;
        }
        friend constexpr bool operator==(Options, Options) noexcept = default;
        /// The options of either set.
        friend constexpr Options operator|(Options a, Options b) noexcept {
            return {a.rawValue | b.rawValue};
        }
    };
    /// What the application keeps with an area.
    using UserInfo = std::map<std::string, std::any, std::less<>>;

    /// The owner, which is told of the mouse, is not kept alive.
    static std::shared_ptr<NSTrackingArea> create(const CGRect& rect, Options options,
                                                  const std::shared_ptr<NSView>& owner,
                                                  std::optional<UserInfo> userInfo = {}) {
        return std::make_shared<NSTrackingArea>(Key{}, rect, options, owner, std::move(userInfo));
    }
    /// For `create`.
    NSTrackingArea(Key, const CGRect& rect, Options options, const std::shared_ptr<NSView>& owner,
                   std::optional<UserInfo> userInfo)
        : rect_(rect), options_(options), owner_(owner), userInfo_(std::move(userInfo)) {}

    /// As given at creation; the owner null once it has gone.
    /// @{
    const CGRect& rect() const noexcept { return rect_; }
    Options options() const noexcept { return options_; }
    std::shared_ptr<NSView> owner() const noexcept { return owner_.lock(); }
    const std::optional<UserInfo>& userInfo() const noexcept { return userInfo_; }
    /// @}

private:
    CGRect rect_;
    Options options_;
    std::weak_ptr<NSView> owner_;
    std::optional<UserInfo> userInfo_;
};

inline constexpr NSTrackingArea::Options NSTrackingArea::Options::mouseEnteredAndExited{0x01};
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::mouseMoved{0x02};
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::activeInActiveApp{0x40};
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::activeAlways{0x80};

} // namespace zorvan
