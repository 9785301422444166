#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/Required.h>

#include <functional>

namespace zorvan {

class CGContext;

/// A drawing that is repeated over the plane, with colours of its own.
struct CGPattern {
    /// What of the drawing shows, in its own coordinates, y upwards.
    Required<CGRect> bounds;
    /// From there to the coordinates that a context has at first.
    CGAffineTransform matrix = {};
    /// How far apart the repetitions stand, in the drawing's coordinates; 0 and what is no number
    /// count as the side of `bounds`. Signs do not matter.
    /// @{
    double xStep = 0;
    double yStep = 0;
    /// @}
    /// Draws one repetition, in colours of its own. Must not be empty.
    Required<std::function<void(CGContext&)>> draw;
};

} // namespace zorvan
