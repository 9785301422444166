#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <compare>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace zorvan {

class CMTimeIterator;

/// A set of the `kCMTimeFlags_` bits.
using CMTimeFlags = std::uint32_t;

/// The time means something. A time without it is invalid, whatever its other fields hold.
inline constexpr CMTimeFlags kCMTimeFlags_Valid = 1u << 0;
/// The time is not exactly what was asked for, or was computed from one that is not.
inline constexpr CMTimeFlags kCMTimeFlags_HasBeenRounded = 1u << 1;
inline constexpr CMTimeFlags kCMTimeFlags_PositiveInfinity = 1u << 2; ///< Beyond all numbers.
inline constexpr CMTimeFlags kCMTimeFlags_NegativeInfinity = 1u << 3; ///< Below all numbers.
/// The time is not known, such as the duration of a live stream.
inline constexpr CMTimeFlags kCMTimeFlags_Indefinite = 1u << 4;
/// The bits under which `value` and `timescale` mean nothing.
inline constexpr CMTimeFlags kCMTimeFlags_ImpliedValueFlagsMask =
    kCMTimeFlags_PositiveInfinity | kCMTimeFlags_NegativeInfinity | kCMTimeFlags_Indefinite;

/// The finest timescale there is: parts of a second.
inline constexpr std::int32_t kCMTimeMaxTimescale = std::numeric_limits<std::int32_t>::max();

/// Hours, minutes and seconds of a time, each a whole number, negative in a negative time.
struct ClockTime {
    double hh = 0; ///< Hours, however many.
    double mm = 0; ///< Minutes, within 59 of zero.
    double ss = 0; ///< Seconds, within 59 of zero.

    friend constexpr bool operator==(const ClockTime&, const ClockTime&) = default;
};

/// A `ClockTime` with milliseconds.
struct ClockTimeWithMilliseconds {
    double hh = 0; ///< Hours, however many.
    double mm = 0; ///< Minutes, within 59 of zero.
    double ss = 0; ///< Seconds, within 59 of zero.
    double ms = 0; ///< From 0 up to but not including 1000, not rounded.

    friend constexpr bool operator==(const ClockTimeWithMilliseconds&,
                                     const ClockTimeWithMilliseconds&) = default;
};

/// A rational time: `value / timescale` seconds, or one of the marks invalid, indefinite, positive
/// and negative infinity.
///
/// A time is *numeric* when it is valid, carries none of the other marks, and its timescale is
/// above zero; a valid time without a mark whose timescale is zero or below counts as invalid
/// everywhere. `epoch` tells apart the passes of a looped or restarted medium; times made from
/// numbers have epoch 0, which also stands for a duration.
///
/// The arithmetic is in `CMTimeArithmetic.h`, which the operators of this type stand on.
struct CMTime {
    /// A number of seconds; infinities and NaN are taken too.
    struct Seconds {
        Required<double> seconds;
    };

    std::int64_t value = 0;     ///< In units of `1 / timescale` seconds.
    std::int32_t timescale = 0; ///< Units in a second.
    CMTimeFlags flags = 0;      ///< What the time is: see `isValid` and its neighbours.
    std::int64_t epoch = 0;     ///< The pass of a medium, 0 unless it says otherwise.

    /// The invalid time.
    constexpr CMTime() noexcept = default;

    /// `CMTimeMakeWithSeconds(seconds, 1000000)`: to the nearest microsecond.
    constexpr explicit CMTime(Seconds argument) noexcept;

    /// What kind of time it is. One that carries several marks is indefinite first, then
    /// positively, then negatively infinite.
    /// @{
    constexpr bool isValid() const noexcept {
        return (flags & kCMTimeFlags_Valid) != 0 &&
               (timescale > 0 || (flags & kCMTimeFlags_ImpliedValueFlagsMask) != 0);
    }
    constexpr bool isPositiveInfinity() const noexcept {
        return isValid() && !isIndefinite() && (flags & kCMTimeFlags_PositiveInfinity) != 0;
    }
    constexpr bool isNegativeInfinity() const noexcept {
        return isValid() &&
               (flags & kCMTimeFlags_ImpliedValueFlagsMask) == kCMTimeFlags_NegativeInfinity;
    }
    constexpr bool isIndefinite() const noexcept {
        return isValid() && (flags & kCMTimeFlags_Indefinite) != 0;
    }
    constexpr bool isNumeric() const noexcept {
        constexpr CMTimeFlags mask = kCMTimeFlags_Valid | kCMTimeFlags_ImpliedValueFlagsMask;
        return (flags & mask) == kCMTimeFlags_Valid && timescale > 0;
    }
    /// @}
    /// Numeric, and rounded on the way.
    constexpr bool hasBeenRounded() const noexcept {
        return isNumeric() && (flags & kCMTimeFlags_HasBeenRounded) != 0;
    }

    /// The time in seconds; NaN when invalid or indefinite, an infinity when infinite. The epoch is
    /// left out.
    constexpr double seconds() const noexcept {
        if (isNumeric())
            return static_cast<double>(value) / timescale;
        constexpr double infinity = std::numeric_limits<double>::infinity();
        if (isPositiveInfinity() || isNegativeInfinity())
            return isPositiveInfinity() ? infinity : -infinity;
        return std::numeric_limits<double>::quiet_NaN();
    }
    /// The time in seconds, 0 when it is indefinite or invalid. An infinite time gives an infinity.
    constexpr double safeSeconds() const noexcept {
        return isValid() && !isIndefinite() ? seconds() : 0;
    }

    /// Half the time.
    [[nodiscard]] constexpr CMTime middle() const noexcept;

    /// The time as a clock shows it. The whole seconds are rounded down, then taken apart toward
    /// zero, so that -1.25 s is 0, 0, -2 and 750 ms, and -3661 s is -1, -1, -1. All zero when the
    /// time is not numeric, or when its whole seconds are 2^63 or more.
    /// @{
    ClockTime hhmmss() const noexcept;
    ClockTimeWithMilliseconds hhmmssms() const noexcept;
    /// @}

    /// "01:02:03"; with milliseconds, rounded, "01:02:03:250". From 0.9995 s up the milliseconds
    /// are "1000".
    /// @{
    std::string hhmmssDesc() const;
    std::string hhmmssmsDesc() const;
    /// @}
    /// The same for the name of a file: "01-02-03", "01-02-03-250".
    /// @{
    std::string hhmmssName() const;
    std::string hhmmssmsName() const;
    /// @}

    /// Whether the distance to `other` is below `tolerance`, one six-hundredth of a second when it
    /// is absent, in the order of `CMTimeCompare`: so any numeric distance is below a tolerance
    /// that is positive infinity, indefinite or invalid, and no distance that is not numeric is
    /// below one that is.
    constexpr bool isNearlyEqualTo(const CMTime& other,
                                   const std::optional<CMTime>& tolerance = {}) const noexcept;
    /// The same with a tolerance in seconds.
    constexpr bool isNearlyEqualTo(const CMTime& other, double tolerance) const noexcept;

    /// The middles of `count` equal parts of the span from zero to this time; include
    /// `CMTimeIterator.h` to use it. Nothing when `count` is zero or below. Any count will do; one
    /// for which no exact step exists takes the nearest step, and the times carry its rounding.
    CMTimeIterator split(std::int64_t count) const noexcept;

    /// As the operators of two operands, in `CMTimeArithmetic.h`.
    /// @{
    constexpr CMTime& operator+=(const CMTime& other) noexcept;
    constexpr CMTime& operator-=(const CMTime& other) noexcept;
    constexpr CMTime& operator*=(std::int32_t factor) noexcept;
    constexpr CMTime& operator*=(double factor) noexcept;
    constexpr CMTime& operator/=(std::int32_t divisor) noexcept;
    /// @}
    CMTime& operator/=(double) = delete;
};

/// `value / timescale` seconds, epoch 0. Invalid when `timescale` is zero or below.
constexpr CMTime CMTimeMake(std::int64_t value, std::int32_t timescale) noexcept;
/// The same in that epoch.
constexpr CMTime CMTimeMakeWithEpoch(std::int64_t value, std::int32_t timescale,
                                     std::int64_t epoch) noexcept;

/// The product `seconds * preferredTimescale`, taken as a double, rounded to whole units, halves
/// away from zero. Marked as rounded when its `seconds()` are another double than `seconds`: a
/// tenth of a second is not.
///
/// A timescale too fine for the value is halved until the value fits, and the result is infinite
/// when it does not fit even at timescale 1. Infinite seconds give an infinite time; NaN, or a
/// timescale of zero or below, the invalid one.
constexpr CMTime CMTimeMakeWithSeconds(double seconds, std::int32_t preferredTimescale) noexcept;

/// `time.seconds()`.
constexpr double CMTimeGetSeconds(const CMTime& time) noexcept;

namespace detail {

constexpr CMTime makeTime(std::int64_t value, std::int32_t timescale, CMTimeFlags flags,
                          std::int64_t epoch = 0) noexcept {
    CMTime time;
    time.value = value;
    time.timescale = timescale;
    time.flags = flags;
    time.epoch = epoch;
    return time;
}

} // namespace detail

/// The time of that kind; `kCMTimeZero` has timescale 1.
/// @{
inline constexpr CMTime kCMTimeInvalid = CMTime();
inline constexpr CMTime kCMTimeZero = detail::makeTime(0, 1, kCMTimeFlags_Valid);
inline constexpr CMTime kCMTimeIndefinite =
    detail::makeTime(0, 0, kCMTimeFlags_Valid | kCMTimeFlags_Indefinite);
inline constexpr CMTime kCMTimePositiveInfinity =
    detail::makeTime(0, 0, kCMTimeFlags_Valid | kCMTimeFlags_PositiveInfinity);
inline constexpr CMTime kCMTimeNegativeInfinity =
    detail::makeTime(0, 0, kCMTimeFlags_Valid | kCMTimeFlags_NegativeInfinity);
/// @}

constexpr CMTime CMTimeMake(std::int64_t value, std::int32_t timescale) noexcept {
    return CMTimeMakeWithEpoch(value, timescale, 0);
}

constexpr CMTime CMTimeMakeWithEpoch(std::int64_t value, std::int32_t timescale,
                                     std::int64_t epoch) noexcept {
    if (timescale <= 0)
        return kCMTimeInvalid;
    return detail::makeTime(value, timescale, kCMTimeFlags_Valid, epoch);
}

constexpr CMTime CMTimeMakeWithSeconds(double seconds, std::int32_t preferredTimescale) noexcept {
    if (seconds != seconds || preferredTimescale <= 0)
        return kCMTimeInvalid;
    constexpr double limit = 9223372036854775808.0; // 2^63
    std::int32_t timescale = preferredTimescale;
    while (timescale > 1 && (seconds * timescale >= limit || seconds * timescale < -limit))
        timescale /= 2;
    const double units = seconds * timescale;
    if (units >= limit)
        return kCMTimePositiveInfinity;
    if (units < -limit)
        return kCMTimeNegativeInfinity;

    std::int64_t value = static_cast<std::int64_t>(units);
    // From 2^52 on a real has no fraction, so that the step away from zero cannot overflow.
    const double fraction = units - static_cast<double>(value);
    if (fraction >= 0.5)
        ++value;
    else if (fraction <= -0.5)
        --value;
    CMTime time = CMTimeMake(value, timescale);
    if (time.seconds() != seconds)
        time.flags |= kCMTimeFlags_HasBeenRounded;
    return time;
}

constexpr double CMTimeGetSeconds(const CMTime& time) noexcept { return time.seconds(); }

constexpr CMTime::CMTime(Seconds argument) noexcept
    : CMTime(CMTimeMakeWithSeconds(argument.seconds, 1000000)) {}

} // namespace zorvan

// The operators and the remaining members are defined there.
#include <zorvan/text/CMTimeArithmetic.h>
