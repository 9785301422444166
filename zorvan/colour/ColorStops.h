#pragma once

#include <zorvan/colour/CGColor.h>

#include <vector>

namespace zorvan {

/// The colours of a gradient and where they stand on the way from 0 to 1, in order; as many of one
/// as of the other.
struct ColorStops {
    std::vector<CGColor> colors;   ///< Never empty in a gradient.
    std::vector<double> locations; ///< From 0 to 1, as many as there are colours.

    friend bool operator==(const ColorStops&, const ColorStops&) = default;
};

} // namespace zorvan
