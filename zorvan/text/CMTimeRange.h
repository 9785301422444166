#pragma once

#include <zorvan/platform/foundation/Required.h>
#include <zorvan/text/CMTime.h>
#include <zorvan/text/CMTimeIterator.h>

namespace zorvan {

/// A span of time: it holds `start` and every time up to, but not including, `end()`.
///
/// A range is *valid* when both fields are valid and the duration is a span: epoch 0 and not below
/// zero. Nothing corrects a range that is not, and every question about it is answered with no.
struct CMTimeRange {
    /// A duration, for a range from zero on.
    struct Duration {
        Required<CMTime> duration;
    };
    /// Both fields.
    struct StartDuration {
        Required<CMTime> start;    ///< Valid or not.
        Required<CMTime> duration; ///< Valid or not.
    };
    /// Another start.
    struct Start {
        Required<CMTime> start;
    };
    /// Another end.
    struct End {
        Required<CMTime> end;
    };

    CMTime start;    ///< The first time.
    CMTime duration; ///< How long it goes on.

    /// The invalid range.
    constexpr CMTimeRange() noexcept = default;
    /// From zero on.
    constexpr explicit CMTimeRange(Duration argument) noexcept
        : start(kCMTimeZero), duration(argument.duration) {}
    /// The fields as they are.
    constexpr explicit CMTimeRange(StartDuration argument) noexcept
        : start(argument.start), duration(argument.duration) {}

    /// Whether both fields are valid and the duration is a span: epoch 0 and not below zero.
    constexpr bool isValid() const noexcept {
        return start.isValid() && duration.isValid() && duration.epoch == 0 &&
               duration >= kCMTimeZero;
    }
    /// Valid, and without any time in it.
    constexpr bool isEmpty() const noexcept { return isValid() && duration == kCMTimeZero; }

    /// `start + duration`.
    constexpr CMTime end() const noexcept { return start + duration; }

    /// The same duration from another start on.
    [[nodiscard]] constexpr CMTimeRange with(Start argument) const noexcept {
        return CMTimeRange({.start = argument.start, .duration = duration});
    }
    /// The same start and another end. An end before the start gives a negative duration.
    [[nodiscard]] constexpr CMTimeRange with(End argument) const noexcept {
        return CMTimeRange({.start = start, .duration = argument.end.value - start});
    }

    /// The time of the range nearest to `time`, its end included: `time` itself, with its own
    /// timescale and marks, when it lies there. The invalid time when the range
    /// or the time is invalid, or when the time is numeric and of another epoch than the start; an
    /// indefinite time comes back as it is.
    [[nodiscard]] constexpr CMTime clamp(const CMTime& time) const noexcept {
        if (!time.isValid() || !isValid())
            return kCMTimeInvalid;
        if (time.isIndefinite())
            return time;
        if (time.isNumeric() && start.isNumeric() && time.epoch != start.epoch)
            return kCMTimeInvalid;
        if (time < start)
            return start;
        return end() < time ? end() : time;
    }

    /// Whether `start <= time < end()`.
    constexpr bool contains(const CMTime& time) const noexcept {
        return isValid() && time.isValid() && !time.isIndefinite() && start <= time && time < end();
    }
    /// Whether the other range begins and ends within this one. A range contains itself.
    constexpr bool contains(const CMTimeRange& other) const noexcept {
        return isValid() && other.isValid() && start <= other.start && other.end() <= end();
    }

    /// The times that both ranges have; `kCMTimeRangeZero` when there are none, the invalid range
    /// when either is invalid.
    [[nodiscard]] constexpr CMTimeRange intersection(const CMTimeRange& other) const noexcept;

    /// The smallest range with the times of both. An empty range adds nothing to the other one. The
    /// invalid range when either is invalid, or when their starts differ in epoch.
    [[nodiscard]] constexpr CMTimeRange union_(const CMTimeRange& other) const noexcept;

    /// The middles of `count` equal parts of the range; nothing when `count` is zero or below.
    constexpr CMTimeIterator split(std::int64_t count) const noexcept {
        const CMTime step = detail::multiplyByRatio(duration, 1, count);
        return CMTimeIterator(start + step.middle() - step, step, count);
    }

    friend constexpr bool operator==(const CMTimeRange&, const CMTimeRange&) noexcept = default;
};

/// The empty range at zero, and the one that is no range.
/// @{
inline constexpr CMTimeRange kCMTimeRangeZero{{.start = kCMTimeZero, .duration = kCMTimeZero}};
inline constexpr CMTimeRange kCMTimeRangeInvalid = CMTimeRange();
/// @}

/// The range of those fields.
constexpr CMTimeRange CMTimeRangeMake(const CMTime& start, const CMTime& duration) noexcept {
    return CMTimeRange({.start = start, .duration = duration});
}

/// The range from `start` up to `end`; its duration is negative when `end` comes first.
constexpr CMTimeRange CMTimeRangeFromTimeToTime(const CMTime& start, const CMTime& end) noexcept {
    return CMTimeRangeMake(start, end - start);
}

/// `range.end()`.
constexpr CMTime CMTimeRangeGetEnd(const CMTimeRange& range) noexcept { return range.end(); }

/// `range.clamp(time)`.
constexpr CMTime CMTimeClampToRange(const CMTime& time, const CMTimeRange& range) noexcept {
    return range.clamp(time);
}

/// `range.contains(time)`.
constexpr bool CMTimeRangeContainsTime(const CMTimeRange& range, const CMTime& time) noexcept {
    return range.contains(time);
}

/// `range.contains(other)`.
constexpr bool CMTimeRangeContainsTimeRange(const CMTimeRange& range,
                                            const CMTimeRange& other) noexcept {
    return range.contains(other);
}

/// `range.intersection(other)`.
constexpr CMTimeRange CMTimeRangeGetIntersection(const CMTimeRange& range,
                                                 const CMTimeRange& other) noexcept {
    if (!range.isValid() || !other.isValid())
        return kCMTimeRangeInvalid;
    const CMTime start = CMTimeMaximum(range.start, other.start);
    const CMTime end = CMTimeMinimum(range.end(), other.end());
    return start < end ? CMTimeRangeFromTimeToTime(start, end) : kCMTimeRangeZero;
}

/// `range.union_(other)`.
constexpr CMTimeRange CMTimeRangeGetUnion(const CMTimeRange& range,
                                          const CMTimeRange& other) noexcept {
    if (!range.isValid() || !other.isValid() || range.start.epoch != other.start.epoch)
        return kCMTimeRangeInvalid;
    if (other.isEmpty())
        return range;
    if (range.isEmpty())
        return other;
    return CMTimeRangeFromTimeToTime(CMTimeMinimum(range.start, other.start),
                                     CMTimeMaximum(range.end(), other.end()));
}

constexpr CMTimeRange CMTimeRange::intersection(const CMTimeRange& other) const noexcept {
    return CMTimeRangeGetIntersection(*this, other);
}
constexpr CMTimeRange CMTimeRange::union_(const CMTimeRange& other) const noexcept {
    return CMTimeRangeGetUnion(*this, other);
}

} // namespace zorvan
