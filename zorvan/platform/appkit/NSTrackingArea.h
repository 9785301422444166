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
public:
    /// A set of options. Without one of those that say when an area is active, it never is.
    struct Options {
        /// One bit for each option.
        std::uint64_t rawValue = 0;

        static const Options mouseEnteredAndExited, mouseMoved, activeInActiveApp, activeAlways;

        /// Whether all of `other` are among them.
        constexpr bool contains(Options other) const noexcept {
            return (rawValue & other.rawValue) == other.rawValue;
        }
        friend constexpr bool operator==(Options, Options) noexcept = default;
        /// |Those of both.
        friend constexpr Options operator|(Options a, Options b) noexcept {
            return {a.rawValue | b.rawValue};
        }
    };
    /// Values of any copyable type by key.
    using UserInfo = std::map<std::string, std::any, std::less<>>;

    /// The owner, which is told of the mouse, is not kept alive.
    static std::shared_ptr<NSTrackingArea> create(const CGRect& rect, Options options,
                                                  const std::shared_ptr<NSView>& owner,
                                                  std::optional<UserInfo> userInfo = {});

    /// In the view's own coordinates.
    const CGRect& rect() const noexcept { return rect_; }
    /// What the owner is told of, and when.
    Options options() const noexcept { return options_; }
    /// Null once it has gone.
    std::shared_ptr<NSView> owner() const noexcept { return owner_.lock(); }
    /// What the area was made with, for the owner; absent when nothing was given.
    const std::optional<UserInfo>& userInfo() const noexcept { return userInfo_; }

private:
    struct Key {};

public:
    /// For `create`.
    NSTrackingArea(Key, const CGRect& rect, Options options, const std::shared_ptr<NSView>& owner,
                   std::optional<UserInfo> userInfo);

private:
    CGRect rect_;
    Options options_;
    std::weak_ptr<NSView> owner_;
    std::optional<UserInfo> userInfo_;
};

/// Tells of the mouse coming and going.
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::mouseEnteredAndExited{0x01};
/// Tells of each move inside.
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::mouseMoved{0x02};
/// While the application is the active one.
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::activeInActiveApp{0x40};
/// Whether the application is the active one or not.
inline constexpr NSTrackingArea::Options NSTrackingArea::Options::activeAlways{0x80};

} // namespace zorvan
