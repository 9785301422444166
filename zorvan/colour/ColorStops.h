#pragma once

#include <zorvan/colour/CGColor.h>

#include <vector>

namespace zorvan {

/// The colours of a gradient and where they stand on the way from 0 to 1, in order; as many of one
/// as of the other.
struct ColorStops {
    std::vector<CGColor> colors;
    std::vector<double> locations;

    friend bool operator==(const ColorStops&, const ColorStops&) = default;
};

} // namespace zorvan
