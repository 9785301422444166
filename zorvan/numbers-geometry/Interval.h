#pragma once

#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/foundation/Required.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace zorvan {

/// A range of reals, both ends included. Nothing keeps `min` from exceeding `max`: ask `isValid()`.
struct Interval {
    double min = 0; ///< The lower end, itself in the interval.
    double max = 0; ///< The upper end, itself in the interval.

    /// Both ends, not put in order.
    struct MinMax {
        Required<double> min; ///< As it is.
        Required<double> max; ///< As it is.
    };
    /// Both ends in either order.
    struct Values {
        Required<double> value1; ///< Either end.
        Required<double> value2; ///< The other one.
    };
    /// The lower end.
    struct Min {
        Required<double> min;
    };
    /// The upper end.
    struct Max {
        Required<double> max;
    };

    constexpr Interval() noexcept = default;
    /// The ends as they are, not put in order.
    /// @{
    constexpr Interval(double min_, double max_) noexcept : min(min_), max(max_) {}
    explicit constexpr Interval(MinMax ends) noexcept : Interval(ends.min, ends.max) {}
    /// @}
    /// The smaller value is `min`: `Interval({.value1 = 3, .value2 = 1})` is [1, 3].
    explicit constexpr Interval(Values values) noexcept
        : Interval(std::min(values.value1.value, values.value2.value),
                   std::max(values.value1.value, values.value2.value)) {}

    static const Interval zero; ///< [0, 0]
    static const Interval unit; ///< [0, 1]

    /// Whether both ends are finite.
    [[nodiscard]] bool isClosed() const noexcept {
        return std::isfinite(min) && std::isfinite(max);
    }
    /// Whether the ends are in order; never with NaN.
    [[nodiscard]] constexpr bool isValid() const noexcept { return min <= max; }
    /// Negative when the ends are exchanged.
    [[nodiscard]] constexpr double length() const noexcept { return max - min; }
    /// Half way between the ends.
    [[nodiscard]] constexpr double middle() const noexcept { return min + (max - min) * 0.5; }

    /// A copy with that end: `i.with({.min = 0})`.
    /// @{
    [[nodiscard]] constexpr Interval with(Min end) const noexcept { return {end.min, max}; }
    [[nodiscard]] constexpr Interval with(Max end) const noexcept { return {min, end.max}; }
    /// @}

    /// Whether each end differs by at most `tolerance`, both bounds included; never for NaN.
    [[nodiscard]] constexpr bool overlap(const Interval& other, double tolerance) const noexcept {
        return zorvan::overlap(min, other.min, tolerance) &&
               zorvan::overlap(max, other.max, tolerance);
    }
    /// Whether each end rounds to the same value at that many decimal places.
    [[nodiscard]] bool isSimilarTo(const Interval& other, std::int64_t places) const noexcept {
        return zorvan::isSimilarTo(min, other.min, places) &&
               zorvan::isSimilarTo(max, other.max, places);
    }
    /// Whether the interval has collapsed onto `value`: both ends are similar to it.
    [[nodiscard]] bool oneEndPointIsSimilarTo(double value, std::int64_t places) const noexcept {
        return isSimilarTo({value, value}, places);
    }

    /// Both ends are inside; nothing is when they are exchanged.
    [[nodiscard]] constexpr bool contains(double value) const noexcept {
        return min <= value && value <= max;
    }
    /// Whether they share a point; touching ends do.
    [[nodiscard]] constexpr bool intersects(const Interval& other) const noexcept {
        return intersection(other).has_value();
    }
    /// What they share, which may be a single point; absent when that is nothing.
    /// @{
    [[nodiscard]] constexpr std::optional<Interval>
    intersection(const Interval& other) const noexcept {
        const Interval shared(std::max(min, other.min), std::min(max, other.max));
        return shared.isValid() ? std::optional(shared) : std::nullopt;
    }
    [[nodiscard]] static constexpr std::optional<Interval>
    intersection(const Interval& a, const Interval& b) noexcept {
        return a.intersection(b);
    }
    /// @}
    /// From the smaller `min` to the larger `max`.
    /// @{
    [[nodiscard]] constexpr Interval union_(const Interval& other) const noexcept {
        return {std::min(min, other.min), std::max(max, other.max)};
    }
    [[nodiscard]] static constexpr Interval union_(const Interval& a, const Interval& b) noexcept {
        return a.union_(b);
    }
    constexpr void formUnion(const Interval& other) noexcept { *this = union_(other); }
    /// @}

    /// Moves the nearer end out to `value` when it lies outside.
    /// @{
    constexpr void expandToValueInPlace(double value) noexcept {
        if (min > value)
            min = value;
        if (max < value)
            max = value;
    }
    [[nodiscard]] constexpr Interval expandingToValue(double value) const noexcept {
        Interval result = *this;
        result.expandToValueInPlace(value);
        return result;
    }
    /// @}
    /// The nearest value of the interval; `max` is looked at first, should the ends be exchanged.
    [[nodiscard]] constexpr double restrictValue(double value) const noexcept {
        return value > max ? max : value < min ? min : value;
    }
    /// `min` for 0, `max` for 1, and on in proportion beyond.
    [[nodiscard]] constexpr double scaleNormalizedValue(double t) const noexcept {
        return min + (max - min) * t;
    }
    /// One of a hundred evenly spaced values from `min` on; never `max`.
    [[nodiscard]] double randomValue() const { return zorvan::randomValue<double>(min, max); }

    /// The two halves.
    [[nodiscard]] constexpr std::pair<Interval, Interval> bissect() const noexcept {
        return {{min, middle()}, {middle(), max}};
    }
    /// The parts below and above `value`; one is absent when `value` lies outside.
    [[nodiscard]] constexpr std::pair<std::optional<Interval>, std::optional<Interval>>
    bissectAtValue(double value) const noexcept {
        if (value < min)
            return {std::nullopt, *this};
        if (value > max)
            return {*this, std::nullopt};
        return {Interval(min, value), Interval(value, max)};
    }
    /// Whether both ends have the same `floor(end * n^10)`: `n` to the tenth power.
    [[nodiscard]] bool hasConverged(std::int64_t n) const noexcept {
        const double scale = std::pow(static_cast<double>(n), 10.0);
        return std::floor(min * scale) == std::floor(max * scale);
    }

    /// "[1.0, 2.0]"
    [[nodiscard]] std::string description() const {
        return "[" + zorvan::description(min) + ", " + zorvan::description(max) + "]";
    }

    friend constexpr bool operator==(const Interval&, const Interval&) = default;
};

inline constexpr Interval Interval::zero{0, 0};
inline constexpr Interval Interval::unit{0, 1};

} // namespace zorvan
