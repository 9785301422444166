#pragma once

#include <zorvan/platform/foundation/internal/byteNumbers.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zorvan::imageio {

using Bytes = std::span<const std::byte>;

/// The number of so many bytes at a position; 0 where the bytes end before.
inline std::uint64_t numberAt(Bytes bytes, std::size_t offset, std::size_t width,
                              bool isBigEndian) noexcept {
    if (width > bytes.size() || offset > bytes.size() - width)
        return 0;
    return internal::numberOf(bytes.subspan(offset, width),
                              isBigEndian ? std::endian::big : std::endian::little);
}

inline std::uint64_t bigEndian(Bytes bytes, std::size_t offset, std::size_t width) noexcept {
    return numberAt(bytes, offset, width, true);
}

inline std::uint64_t littleEndian(Bytes bytes, std::size_t offset, std::size_t width) noexcept {
    return numberAt(bytes, offset, width, false);
}

inline std::uint16_t big16(Bytes bytes, std::size_t offset) noexcept {
    return static_cast<std::uint16_t>(bigEndian(bytes, offset, 2));
}

inline std::uint32_t big32(Bytes bytes, std::size_t offset) noexcept {
    return static_cast<std::uint32_t>(bigEndian(bytes, offset, 4));
}

inline std::string_view textOf(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace zorvan::imageio
