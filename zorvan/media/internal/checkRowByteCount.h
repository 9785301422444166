#pragma once

#include <zorvan/platform/foundation/fatalError.h>

#include <cstdint>
#include <string>

namespace zorvan {

/// Stops the program when a row of that many pixels has more bytes than a signed 64-bit number
/// counts.
inline void checkRowByteCount(std::int64_t width) noexcept {
    std::int64_t byteCount;
    if (__builtin_mul_overflow(width, std::int64_t{4}, &byteCount))
        fatalError("The byte count of a bitmap row of " + std::to_string(width) +
                   " pixels is outside the signed 64-bit range.");
}

} // namespace zorvan
