#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/Interval.h>

#include <ostream>

// What a failed comparison shows.
namespace zorvan {

inline void PrintTo(const CGPoint& p, std::ostream* out) {
    *out << "(" << p.x << ", " << p.y << ")";
}
inline void PrintTo(const CGSize& z, std::ostream* out) { *out << z.width << " x " << z.height; }
inline void PrintTo(const CGRect& r, std::ostream* out) {
    *out << "(" << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height
         << ")";
}
inline void PrintTo(const Interval& i, std::ostream* out) { *out << i.description(); }

} // namespace zorvan
