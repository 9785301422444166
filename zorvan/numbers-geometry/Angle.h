#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <compare>
#include <string>

namespace zorvan {

/// A multiple of pi, named by numerator and denominator of the factor of pi: PI_3_2 is 3/2 pi.
/// @{
inline constexpr double PI_0_1 = 0.0;
inline constexpr double PI_1_1 = 3.14159265358979323846;
inline constexpr double PI_1_2 = 1.57079632679489661923;
inline constexpr double PI_1_3 = 1.04719755119659774615;
inline constexpr double PI_1_4 = 0.78539816339744830962;
inline constexpr double PI_2_1 = 6.28318530717958647693;
inline constexpr double PI_3_2 = 4.71238898038468985769;
inline constexpr double PI_3_4 = 2.35619449019234492885;
/// @}

/// An angle, kept within one turn: from 0 up to but not including 2 pi.
///
/// Only `+=` and `-=` can leave that range. An angle made from NaN or an infinity is NaN.
class Angle {
public:
    /// What `type()` tells apart.
    enum class Type { zero, acute, right, obtuse, straight, reflex };

    /// A number of radians, of any size and sign.
    struct Radians {
        Required<double> radians;
    };
    /// A number of degrees, of any size and sign.
    struct Degrees {
        Required<double> degrees;
    };

    constexpr Angle() noexcept = default;
    /// `Angle({.radians = PI_1_2})` or `Angle({.degrees = 90})`.
    /// @{
    explicit Angle(Radians argument) noexcept : value_(normalized(argument.radians)) {}
    explicit Angle(Degrees argument) noexcept { setDegrees(argument.degrees); }
    /// @}

    /// 0, a quarter turn and a half turn.
    /// @{
    static const Angle zero, right, straight;
    /// @}

    /// In radians, as it is stored.
    /// @{
    [[nodiscard]] constexpr double value() const noexcept { return value_; }
    [[nodiscard]] constexpr double radians() const noexcept { return value_; }
    /// @}
    /// Brings any number of radians within one turn.
    void setRadians(double radians) noexcept { value_ = normalized(radians); }
    /// A whole turn is 360; the setter brings any number of degrees within one turn.
    /// @{
    [[nodiscard]] constexpr double degrees() const noexcept { return radiansToDegrees(value_); }
    void setDegrees(double degrees) noexcept { setRadians(degreesToRadians(degrees)); }
    /// @}

    /// Multiplies alone: the result is not brought within one turn.
    /// @{
    [[nodiscard]] static constexpr double radiansToDegrees(double radians) noexcept {
        return radians * 57.29577951308232;
    }
    [[nodiscard]] static constexpr double degreesToRadians(double degrees) noexcept {
        return degrees * 0.017453292519943295;
    }
    /// @}

    /// What completes the angle, taken within a quarter turn, to a quarter turn.
    [[nodiscard]] Angle complementary() const noexcept;
    /// What completes the angle, taken within a half turn, to a half turn.
    [[nodiscard]] Angle supplementary() const noexcept;
    /// What completes the angle to a whole turn.
    [[nodiscard]] Angle explementary() const noexcept;

    /// By exact comparison with 0, pi/2 and pi.
    [[nodiscard]] Type type() const noexcept;

    /// "90.0 deg"
    [[nodiscard]] std::string description() const;

    /// Brought back within one turn.
    /// @{
    friend Angle operator+(Angle a, Angle b) noexcept {
        return Angle({.radians = a.value_ + b.value_});
    }
    friend Angle operator-(Angle a, Angle b) noexcept {
        return Angle({.radians = a.value_ - b.value_});
    }
    /// @}
    /// Not brought back within one turn.
    /// @{
    constexpr Angle& operator+=(Angle other) noexcept {
        value_ += other.value_;
        return *this;
    }
    constexpr Angle& operator-=(Angle other) noexcept {
        value_ -= other.value_;
        return *this;
    }
    /// @}

    friend constexpr bool operator==(Angle, Angle) = default;
    friend constexpr std::partial_ordering operator<=>(Angle, Angle) = default;

private:
    explicit constexpr Angle(double value) noexcept : value_(value) {}
    static double normalized(double radians) noexcept;

    double value_ = 0;
};

inline constexpr Angle Angle::zero{0.0};
inline constexpr Angle Angle::right{PI_1_2};
inline constexpr Angle Angle::straight{PI_1_1};

} // namespace zorvan
