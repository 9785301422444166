#include <zorvan/numbers-geometry/Line.h>

#include <cmath>

namespace zorvan {

Line::Line(CGPoint p1, CGPoint p2) noexcept {
    const double d = std::hypot(p1.y - p2.y, p2.x - p1.x);
    if (d == 0)
        return;
    a = (p1.y - p2.y) / d;
    b = (p2.x - p1.x) / d;
    c = (p1.x * p2.y - p1.y * p2.x) / d;
}

} // namespace zorvan
