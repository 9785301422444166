#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <optional>
#include <vector>

namespace zorvan {

struct TextSpan {
    double left;
    double right;
    double length() const noexcept { return right - left; }
};

/// The widest stretch that lies inside the polygons (by winding) at every height from `top` to
/// `bottom`; absent when there is none.
std::optional<TextSpan> widestSpan(const std::vector<std::vector<CGPoint>>& polygons, double top,
                                   double bottom);

} // namespace zorvan
