// A picture fitted into a page
//
// y grows upward: the top edge of a rectangle is at maxY().
//
// Link Zorvan::NumbersGeometry.

#include <zorvan/numbers-geometry/CGRect.h>

#include <iostream>

using namespace zorvan;

int main() {
    const CGRect page({.width = 210, .height = 297});
    const CGRect body = page.shrunkBy({.dx = 20, .dy = 25});
    const CGRect upperHalf = body.with({.th = body.height() / 2}); // the top edge stays
    const CGRect picture = CGSize(1600, 900).fitting(upperHalf);
    for (const CGRect& r : {body, upperHalf, picture})
        std::cout << r.x() << ", " << r.y() << ": " << r.width() << " x " << r.height() << '\n';
    std::cout << (body.contains(picture) ? "inside" : "outside") << '\n';
}
