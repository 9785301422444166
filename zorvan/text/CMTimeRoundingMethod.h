#pragma once

#include <cstdint>

namespace zorvan {

/// What becomes of a value that falls between two units of a timescale.
enum class CMTimeRoundingMethod : std::uint32_t {
    roundHalfAwayFromZero = 1,
    roundTowardZero = 2,
    roundAwayFromZero = 3,
    /// Toward zero when the new timescale is coarser, away from zero when it is finer; a time that
    /// is not zero never becomes zero, but one unit of its sign.
    neverToZero = 4,
    roundTowardPositiveInfinity = 5,
    roundTowardNegativeInfinity = 6,
    default_ = roundHalfAwayFromZero
};

} // namespace zorvan
