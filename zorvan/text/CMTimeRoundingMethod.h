#pragma once

#include <cstdint>

namespace zorvan {

/// What becomes of a value that falls between two units of a timescale.
enum class CMTimeRoundingMethod : std::uint32_t {
    roundHalfAwayFromZero = 1, ///< To the nearest one, a half to the farther from zero.
    roundTowardZero = 2,       ///< Cuts the fraction off.
    roundAwayFromZero = 3,     ///< To the next one that is not nearer to zero.
    /// Toward zero when the new timescale is coarser, away from zero when it is finer; a time that
    /// is not zero never becomes zero, but one unit of its sign.
    neverToZero = 4,
    roundTowardPositiveInfinity = 5, ///< Up.
    roundTowardNegativeInfinity = 6, ///< Down.
    default_ = roundHalfAwayFromZero ///< What is taken when nothing is said.
};

} // namespace zorvan
