#pragma once

#include <cstddef>
#include <cstdint>

namespace zorvan {

/// Where bitmaps get their bytes from.
///
/// Large blocks stand on huge pages, and the last one given back is kept for the next that fits it:
/// mapping fresh pages costs as much time as copying a picture. The kernel may take the pages of
/// the kept block when memory runs short. Safe to call from any thread.
class PixelStore {
public:
    /// Bytes with any contents; null when there is no memory.
    static std::uint8_t* take(std::size_t byteCount) noexcept;
    /// Bytes that are zero; null when there is no memory.
    static std::uint8_t* takeZeroed(std::size_t byteCount) noexcept;
    /// Gives back what was taken with the same count.
    static void release(std::uint8_t* bytes, std::size_t byteCount) noexcept;

    /// The most bytes that are kept.
    static constexpr std::size_t maximumKeptByteCount = std::size_t{128} << 20;
};

} // namespace zorvan
