// A picture fitted into a page, and its corner dragged across itself.
// Link Zorvan::NumbersGeometry.

#include <zorvan/numbers-geometry.h>

#include <iostream>

using namespace zorvan;

int main() {
    const CGRect page({.width = 210, .height = 297});
    const CGRect body = page.shrunkBy({.percent = 0.2});
    CGRect picture = CGSize(1600, 900).fitting(body.with({.th = 100})); // the top edge stays
    std::cout << picture.size.roundIntDesc() << " at " << picture.topLeft().y << '\n';

    const RectAnchor handle = picture.move(RectAnchor::topRight, {10, 10});
    std::cout << (handle == RectAnchor::bottomLeft) << ' ' << picture.contains(CGPoint(15, 50))
              << '\n';
}
