#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace zorvan {

struct CGRect;

/// A width and a height. Negative values are allowed and carried through unless an operation says
/// otherwise.
struct CGSize {
    double width = 0;  ///< Along x, in the unit that the caller computes with.
    double height = 0; ///< Along y.

    /// One value for both sides.
    struct Square {
        Required<double> square;
    };
    /// What to put in place of the sides, to add to them, or to multiply them by; where it is
    /// absent, the side stays.
    struct WH {
        std::optional<double> w = {}; ///< For the width.
        std::optional<double> h = {}; ///< For the height.
    };
    /// As `WH`, under the long names.
    struct WidthHeight {
        std::optional<double> width = {};  ///< For the width.
        std::optional<double> height = {}; ///< For the height.
    };

    constexpr CGSize() noexcept = default;
    /// Any two values, negative ones too.
    constexpr CGSize(double width_, double height_) noexcept : width(width_), height(height_) {}
    /// The value for both sides: `CGSize({.square = 2})`.
    explicit constexpr CGSize(Square argument) noexcept
        : CGSize(argument.square, argument.square) {}

    static const CGSize zero; ///< 0 x 0

    /// The smaller or the larger of the two values, with its sign.
    /// @{
    [[nodiscard]] constexpr double min() const noexcept { return width < height ? width : height; }
    [[nodiscard]] constexpr double max() const noexcept { return height <= width ? width : height; }
    /// @}
    /// Negative when one side is.
    [[nodiscard]] constexpr double area() const noexcept { return width * height; }
    /// Whether a side is exactly zero; negative sides are not empty.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return width == 0 || height == 0; }
    /// Whether it is higher than wide.
    [[nodiscard]] constexpr bool isPortrait() const noexcept { return width < height; }
    /// A square is landscape.
    [[nodiscard]] constexpr bool isLandscape() const noexcept { return height <= width; }
    /// As the division of reals gives it: infinite or NaN over zero.
    /// @{
    [[nodiscard]] constexpr double whRatio() const noexcept { return width / height; }
    [[nodiscard]] constexpr double hwRatio() const noexcept { return height / width; }
    /// @}
    /// The middle of the rectangle of this size at the origin.
    [[nodiscard]] constexpr CGPoint center() const noexcept { return {width * 0.5, height * 0.5}; }
    /// The point `(width, height)`.
    [[nodiscard]] constexpr CGPoint point() const noexcept { return {width, height}; }
    /// The rectangle of this size at the origin.
    [[nodiscard]] constexpr CGRect rect() const noexcept;
    /// Width and height exchanged.
    /// @{
    [[nodiscard]] constexpr CGSize flipped() const noexcept { return {height, width}; }
    [[nodiscard]] constexpr CGSize inversed() const noexcept { return flipped(); }
    /// @}
    /// The square on the shorter or on the longer side.
    /// @{
    [[nodiscard]] constexpr CGSize innerSquare() const noexcept { return {min(), min()}; }
    [[nodiscard]] constexpr CGSize outerSquare() const noexcept { return {max(), max()}; }
    /// @}

    /// "640 x 480", rounded.
    [[nodiscard]] std::string roundIntDesc() const;
    /// Each rounded, halves away from zero; the nearest integer there is when it leaves the range
    /// of 64 bits, 0 for NaN.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> roundIntWidthHeight() const noexcept {
        return {zorvan::roundInt(width), zorvan::roundInt(height)};
    }
    /// Rounded by way of 64-bit integers.
    [[nodiscard]] CGSize roundInt() const noexcept {
        return {static_cast<double>(zorvan::roundInt(width)),
                static_cast<double>(zorvan::roundInt(height))};
    }
    /// Each side without its sign.
    [[nodiscard]] CGSize abs() const noexcept { return {zorvan::abs(width), zorvan::abs(height)}; }
    /// Each side by itself, as the function of that name does to a number: halves round away from
    /// zero, a negative count of `places` rounds to tens, hundreds and so on.
    /// @{
    [[nodiscard]] CGSize floor() const noexcept {
        return {zorvan::floor(width), zorvan::floor(height)};
    }
    [[nodiscard]] CGSize ceil() const noexcept {
        return {zorvan::ceil(width), zorvan::ceil(height)};
    }
    [[nodiscard]] CGSize round() const noexcept {
        return {zorvan::round(width), zorvan::round(height)};
    }
    [[nodiscard]] CGSize round(std::int64_t places) const noexcept {
        return {zorvan::round(width, places), zorvan::round(height, places)};
    }
    /// @}

    /// `size.with({.w = 3})` or `size.with({.width = 3})`.
    /// @{
    [[nodiscard]] constexpr CGSize with(WH replaced) const noexcept {
        return {replaced.w.value_or(width), replaced.h.value_or(height)};
    }
    [[nodiscard]] constexpr CGSize with(WidthHeight replaced) const noexcept {
        return {replaced.width.value_or(width), replaced.height.value_or(height)};
    }
    /// @}
    /// An absent amount adds nothing.
    /// @{
    [[nodiscard]] constexpr CGSize adding(WH amounts) const noexcept {
        return {width + amounts.w.value_or(0), height + amounts.h.value_or(0)};
    }
    [[nodiscard]] constexpr CGSize adding(WidthHeight amounts) const noexcept {
        return {width + amounts.width.value_or(0), height + amounts.height.value_or(0)};
    }
    /// @}
    /// An absent factor changes nothing.
    /// @{
    [[nodiscard]] constexpr CGSize multiplying(WH factors) const noexcept {
        return {width * factors.w.value_or(1), height * factors.h.value_or(1)};
    }
    [[nodiscard]] constexpr CGSize multiplying(WidthHeight factors) const noexcept {
        return {width * factors.width.value_or(1), height * factors.height.value_or(1)};
    }
    /// @}

    /// Whether each side differs by at most `tolerance`, both bounds included; never for NaN.
    [[nodiscard]] constexpr bool overlap(CGSize other, double tolerance) const noexcept {
        return point().overlap(other.point(), tolerance);
    }
    /// Whether each side rounds to the same value at that many decimal places.
    [[nodiscard]] bool isSimilarTo(CGSize other, std::int64_t places) const noexcept {
        return point().isSimilarTo(other.point(), places);
    }

    /// The width to scale to.
    struct ToWidth {
        Required<double> toWidth;
    };
    /// The height to scale to.
    struct ToHeight {
        Required<double> toHeight;
    };
    /// The same ratio at another width or height: `size.scaling({.toWidth = 640})`.
    /// @{
    [[nodiscard]] constexpr CGSize scaling(ToWidth to) const noexcept {
        return {to.toWidth, height / width * to.toWidth};
    }
    [[nodiscard]] constexpr CGSize scaling(ToHeight to) const noexcept {
        return {width / height * to.toHeight, to.toHeight};
    }
    /// @}
    /// Reduced, at the same ratio, until neither side is longer than `longest`. Reduced sides are
    /// positive.
    [[nodiscard]] CGSize clamping(double longest) const noexcept;
    /// Reduced, at the same ratio, until it fits in `bounds`; never enlarged.
    [[nodiscard]] constexpr CGSize clamping(CGSize bounds) const noexcept {
        const double rx = bounds.width / width;
        const double ry = bounds.height / height;
        if (rx >= 1 && ry >= 1)
            return *this;
        if (rx <= ry)
            return {bounds.width, height * rx};
        return ry < rx ? CGSize(width * ry, bounds.height) : *this;
    }

    /// The largest size of that ratio of width to height that fits in this one.
    [[nodiscard]] constexpr CGSize innerFittingSize(double ratio) const noexcept {
        return whRatio() < ratio ? CGSize(width, width / ratio) : CGSize(ratio * height, height);
    }
    /// The smallest size of that ratio of width to height that covers this one.
    [[nodiscard]] constexpr CGSize innerFillingSize(double ratio) const noexcept {
        return whRatio() < ratio ? CGSize(ratio * height, height) : CGSize(width, width / ratio);
    }
    /// Scaled, at the same ratio, to just fit in `bounds`.
    [[nodiscard]] constexpr CGSize fitting(CGSize bounds) const noexcept {
        return bounds.innerFittingSize(whRatio());
    }
    /// Scaled, at the same ratio, to just cover `bounds`.
    [[nodiscard]] constexpr CGSize filling(CGSize bounds) const noexcept {
        return bounds.innerFillingSize(whRatio());
    }
    /// The same, centred in the rectangle.
    /// @{
    [[nodiscard]] constexpr CGRect fitting(const CGRect& bounds) const noexcept;
    [[nodiscard]] constexpr CGRect filling(const CGRect& bounds) const noexcept;
    /// @}
    /// The rectangle of this size in the middle of `bounds`, also when it is the larger one.
    [[nodiscard]] constexpr CGRect centered(const CGRect& bounds) const noexcept;

    /// The sides as the map takes a vector: it is turned and scaled, not moved.
    [[nodiscard]] constexpr CGSize applying(const CGAffineTransform& t) const noexcept;

    friend constexpr bool operator==(const CGSize&, const CGSize&) = default;

    /// Side by side; a number stands for both sides. There is no product of two sizes.
    /// @{
    friend constexpr CGSize operator+(CGSize z) noexcept { return z; }
    friend constexpr CGSize operator-(CGSize z) noexcept { return {-z.width, -z.height}; }
    friend constexpr CGSize operator+(CGSize a, CGSize b) noexcept {
        return {a.width + b.width, a.height + b.height};
    }
    friend constexpr CGSize operator-(CGSize a, CGSize b) noexcept {
        return {a.width - b.width, a.height - b.height};
    }
    friend constexpr CGSize operator+(CGSize z, double s) noexcept {
        return {z.width + s, z.height + s};
    }
    friend constexpr CGSize operator-(CGSize z, double s) noexcept {
        return {z.width - s, z.height - s};
    }
    friend constexpr CGSize operator*(CGSize z, double s) noexcept {
        return {z.width * s, z.height * s};
    }
    friend constexpr CGSize operator/(CGSize z, double s) noexcept {
        return {z.width / s, z.height / s};
    }
    friend constexpr CGSize operator+(double s, CGSize z) noexcept {
        return {s + z.width, s + z.height};
    }
    friend constexpr CGSize operator-(double s, CGSize z) noexcept {
        return {s - z.width, s - z.height};
    }
    friend constexpr CGSize operator*(double s, CGSize z) noexcept {
        return {s * z.width, s * z.height};
    }
    constexpr CGSize& operator+=(CGSize other) noexcept { return *this = *this + other; }
    constexpr CGSize& operator-=(CGSize other) noexcept { return *this = *this - other; }
    constexpr CGSize& operator+=(double s) noexcept { return *this = *this + s; }
    constexpr CGSize& operator-=(double s) noexcept { return *this = *this - s; }
    constexpr CGSize& operator*=(double s) noexcept { return *this = *this * s; }
    constexpr CGSize& operator/=(double s) noexcept { return *this = *this / s; }
    /// @}
};

inline constexpr CGSize CGSize::zero{};

constexpr CGSize CGPoint::size() const noexcept { return {x, y}; }

} // namespace zorvan

#include <zorvan/numbers-geometry/CGRect.h>
