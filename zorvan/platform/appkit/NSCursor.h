#pragma once

#include <cstdint>

namespace zorvan {

/// The shape of the pointer over a view.
enum class NSCursor : std::int64_t {
    arrow,
    iBeam,
    pointingHand,
    openHand,
    closedHand,
    crosshair,
    resizeLeftRight,
    resizeUpDown,
    operationNotAllowed,
};

} // namespace zorvan
