#pragma once

#include <cstddef>
#include <cstdint>

namespace zorvan {

/// The offsets from `lower` up to but not including `upper`; in characters where nothing else is
/// said.
struct Range {
    std::int64_t lower; ///< The first.
    std::int64_t upper; ///< One past the last.

    friend constexpr bool operator==(const Range&, const Range&) = default;
};

/// `length` UTF-16 units from `location` on.
struct NSRange {
    std::size_t location; ///< The first unit.
    std::size_t length;   ///< How many units.

    /// One past the last unit.
    constexpr std::size_t end() const noexcept { return location + length; }
    friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

} // namespace zorvan
