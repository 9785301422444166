#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <algorithm>
#include <initializer_list>

namespace zorvan {

/// How far a content stands in from each edge; a negative inset reaches beyond it.
struct NSEdgeInsets {
    double top = 0;    ///< Downward.
    double left = 0;   ///< Rightward.
    double bottom = 0; ///< Upward.
    double right = 0;  ///< Leftward.

    /// One inset for all four edges.
    struct All {
        Required<double> all;
    };
    /// One inset for the top and bottom edges.
    struct TopAndBottom {
        Required<double> topAndBottom;
    };
    /// One inset for the left and right edges.
    struct LeftAndRight {
        Required<double> leftAndRight;
    };

    constexpr NSEdgeInsets() noexcept = default;
    /// In the order top, left, bottom, right.
    constexpr NSEdgeInsets(double top_, double left_, double bottom_, double right_) noexcept
        : top(top_), left(left_), bottom(bottom_), right(right_) {}
    /// `NSEdgeInsets({.all = 8})`.
    explicit constexpr NSEdgeInsets(All value) noexcept
        : NSEdgeInsets(value.all, value.all, value.all, value.all) {}
    /// Nothing at the left and right.
    explicit constexpr NSEdgeInsets(TopAndBottom value) noexcept
        : top(value.topAndBottom), bottom(value.topAndBottom) {}
    /// Nothing at the top and bottom.
    explicit constexpr NSEdgeInsets(LeftAndRight value) noexcept
        : left(value.leftAndRight), right(value.leftAndRight) {}

    /// The smallest or the largest of the four.
    /// @{
    [[nodiscard]] constexpr double min() const noexcept {
        return std::min({top, left, bottom, right});
    }
    [[nodiscard]] constexpr double max() const noexcept {
        return std::max({top, left, bottom, right});
    }
    /// @}

    friend constexpr bool operator==(const NSEdgeInsets&, const NSEdgeInsets&) = default;
};

} // namespace zorvan
