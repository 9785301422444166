#pragma once

#include <zorvan/text/CMTime.h>

#include <cstddef>
#include <iterator>
#include <optional>

namespace zorvan {

/// Evenly spaced times, one at a time. Made by `CMTime::split` and `CMTimeRange::split`; it keeps
/// copies of what it needs. Single pass: copies of it go on independently, and one may not be
/// advanced from two threads at once.
///
///     for (const CMTime& time : duration.split(4)) ...
class CMTimeIterator {
public:
    /// Yields `start + step`, `start + 2 * step` and so on, `count` times; nothing when `count` is
    /// zero or below.
    constexpr CMTimeIterator(const CMTime& start, const CMTime& step, std::int64_t count) noexcept
        : current_(start), step_(step), count_(count) {}

    /// The next time; absent from the end on.
    constexpr std::optional<CMTime> next() noexcept {
        if (index_ >= count_)
            return std::nullopt;
        ++index_;
        current_ += step_;
        return current_;
    }

    /// A position of a range-based `for`; it advances the iterator that it came from.
    class Position {
    public:
        using difference_type = std::ptrdiff_t; ///< As the standard library asks of an iterator.
        using value_type = CMTime;              ///< As the standard library asks of an iterator.

        /// Takes the first time from the iterator.
        constexpr explicit Position(CMTimeIterator& times) noexcept
            : times_(&times), time_(times.next()) {}

        /// The time at the position, which must not be at the end.
        constexpr const CMTime& operator*() const noexcept { return *time_; }
        /// Takes the next time.
        /// @{
        constexpr Position& operator++() noexcept {
            time_ = times_->next();
            return *this;
        }
        constexpr void operator++(int) noexcept { ++*this; }
        /// @}
        /// Whether the times have come to their end.
        friend constexpr bool operator==(const Position& position,
                                         std::default_sentinel_t) noexcept {
            return !position.time_;
        }

    private:
        CMTimeIterator* times_;
        std::optional<CMTime> time_;
    };

    /// Takes the next time; what is left comes in a `for`.
    constexpr Position begin() noexcept { return Position(*this); }
    /// Where no time is left.
    constexpr std::default_sentinel_t end() const noexcept { return {}; }

private:
    std::int64_t index_ = 0;
    CMTime current_;
    CMTime step_;
    std::int64_t count_;
};

} // namespace zorvan
