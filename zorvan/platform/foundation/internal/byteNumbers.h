#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zorvan::internal {

// Whole numbers without a sign in up to eight bytes, as files and messages have them.

constexpr std::uint64_t numberOf(std::span<const std::byte> bytes, std::endian order) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t next = order == std::endian::big ? i : bytes.size() - 1 - i;
        number = number << 8 | std::to_integer<std::uint64_t>(bytes[next]);
    }
    return number;
}

/// What does not fit the bytes is cut off at its upper end.
constexpr void putNumber(std::span<std::byte> bytes, std::uint64_t number,
                         std::endian order) noexcept {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t next = order == std::endian::big ? bytes.size() - 1 - i : i;
        bytes[next] = static_cast<std::byte>(number >> (8 * i));
    }
}

inline void appendNumber(Data& bytes, std::uint64_t number, std::size_t width, std::endian order) {
    bytes.resize(bytes.size() + width);
    putNumber(std::span(bytes).last(width), number, order);
}

} // namespace zorvan::internal
