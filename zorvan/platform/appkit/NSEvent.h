#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <cstdint>
#include <memory>

namespace zorvan {

class NSTrackingArea;

/// What the mouse did, as a window is told of it and hands it on to its views.
struct NSEvent {
    enum class EventType : std::int64_t {
        leftMouseDown = 1,
        leftMouseUp = 2,
        mouseMoved = 5,
        leftMouseDragged = 6,
        mouseEntered = 8,
        mouseExited = 9,
    };

    EventType type = EventType::mouseMoved;
    /// In points from the bottom left corner of the window, y growing upward.
    CGPoint locationInWindow = {};
    /// Which press of a quick row of them this one is.
    std::int64_t clickCount = 1;
    /// The area that was entered or left; null for every other event.
    std::shared_ptr<NSTrackingArea> trackingArea = nullptr;
};

} // namespace zorvan
