#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <cstdint>
#include <initializer_list>

namespace zorvan {

/// A set of the corners of a rectangle; y grows upward, so `topLeft` stands at `(minX, maxY)`.
class RectCorners {
public:
    static const RectCorners topLeft;     ///< raw value 1
    static const RectCorners bottomLeft;  ///< raw value 2
    static const RectCorners topRight;    ///< raw value 4
    static const RectCorners bottomRight; ///< raw value 8
    static const RectCorners allValues;   ///< raw value 15

    /// Bits, one for each corner.
    struct RawValue {
        Required<std::int64_t> rawValue;
    };

    /// The empty set.
    constexpr RectCorners() noexcept = default;
    /// Any bits, kept as they are: `RectCorners({.rawValue = 5})`.
    explicit constexpr RectCorners(RawValue argument) noexcept : bits_(argument.rawValue) {}
    /// The union of the members: `RectCorners({RectCorners::topLeft, RectCorners::topRight})`.
    constexpr RectCorners(std::initializer_list<RectCorners> members) noexcept {
        for (const RectCorners& member : members)
            formUnion(member);
    }

    /// The bits as they were given, also those that stand for no corner.
    [[nodiscard]] constexpr std::int64_t rawValue() const noexcept { return bits_; }
    /// Whether no bit is set.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return bits_ == 0; }

    /// The operations of sets, on all bits; `formX`, `subtract`, `insert` and `remove` change the
    /// set itself. `symmetricDifference` is what is in one of the two alone.
    /// @{
    [[nodiscard]] constexpr RectCorners union_(RectCorners other) const noexcept {
        return of(bits_ | other.bits_);
    }
    [[nodiscard]] constexpr RectCorners intersection(RectCorners other) const noexcept {
        return of(bits_ & other.bits_);
    }
    [[nodiscard]] constexpr RectCorners symmetricDifference(RectCorners other) const noexcept {
        return of(bits_ ^ other.bits_);
    }
    [[nodiscard]] constexpr RectCorners subtracting(RectCorners other) const noexcept {
        return of(bits_ & ~other.bits_);
    }
    constexpr void formUnion(RectCorners other) noexcept { *this = union_(other); }
    constexpr void formIntersection(RectCorners other) noexcept { *this = intersection(other); }
    constexpr void formSymmetricDifference(RectCorners other) noexcept {
        *this = symmetricDifference(other);
    }
    constexpr void subtract(RectCorners other) noexcept { *this = subtracting(other); }
    constexpr void insert(RectCorners members) noexcept { formUnion(members); }
    constexpr void remove(RectCorners members) noexcept { subtract(members); }
    /// @}

    /// Whether every one of the members is in the set.
    [[nodiscard]] constexpr bool contains(RectCorners members) const noexcept {
        return members.isSubset(*this);
    }
    /// Whether all of the one is in the other; strictly so when they also differ. The empty set is
    /// in every one.
    /// @{
    [[nodiscard]] constexpr bool isSubset(RectCorners of) const noexcept {
        return intersection(of) == *this;
    }
    [[nodiscard]] constexpr bool isSuperset(RectCorners of) const noexcept {
        return of.isSubset(*this);
    }
    [[nodiscard]] constexpr bool isStrictSubset(RectCorners of) const noexcept {
        return isSubset(of) && *this != of;
    }
    [[nodiscard]] constexpr bool isStrictSuperset(RectCorners of) const noexcept {
        return of.isStrictSubset(*this);
    }
    /// @}
    /// Whether they have nothing in common.
    [[nodiscard]] constexpr bool isDisjoint(RectCorners with) const noexcept {
        return intersection(with).isEmpty();
    }

    /// With top and bottom exchanged; bits that stand for no corner are dropped.
    [[nodiscard]] constexpr RectCorners flipped() const noexcept {
        const auto bits = static_cast<std::uint64_t>(bits_);
        return of(static_cast<std::int64_t>(((bits >> 1) & 5) | ((bits << 1) & 10)));
    }

    /// The union.
    friend constexpr RectCorners operator|(RectCorners a, RectCorners b) noexcept {
        return a.union_(b);
    }
    friend constexpr bool operator==(RectCorners, RectCorners) = default;

private:
    static constexpr RectCorners of(std::int64_t bits) noexcept {
        return RectCorners(RawValue{bits});
    }

    std::int64_t bits_ = 0;
};

inline constexpr RectCorners RectCorners::topLeft = of(1);
inline constexpr RectCorners RectCorners::bottomLeft = of(2);
inline constexpr RectCorners RectCorners::topRight = of(4);
inline constexpr RectCorners RectCorners::bottomRight = of(8);
inline constexpr RectCorners RectCorners::allValues = of(15);

} // namespace zorvan
