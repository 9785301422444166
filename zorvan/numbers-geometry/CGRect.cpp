#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>

#include <algorithm>
#include <string>

namespace zorvan {

CGRect::CGRect(Corners corners) noexcept {
    const CGPoint p1 = corners.p1;
    const CGPoint p2 = corners.p2;
    origin = {std::min(p1.x, p2.x), std::min(p1.y, p2.y)};
    size = (p2 - p1).abs().size();
}

CGRect CGRect::intersection(const CGRect& other) const noexcept {
    const double left = std::max(minX(), other.minX());
    const double right = std::min(maxX(), other.maxX());
    const double bottom = std::max(minY(), other.minY());
    const double top = std::min(maxY(), other.maxY());
    const bool haveArea = !isEmpty() && !other.isEmpty() && left < right && bottom < top;
    return haveArea ? CGRect(Edges{left, right, bottom, top}) : null;
}

CGRect CGRect::union_(const CGRect& other) const noexcept {
    if (isNull())
        return other.standardized();
    if (other.isNull())
        return standardized();
    return CGRect({.left = std::min(minX(), other.minX()),
                   .right = std::max(maxX(), other.maxX()),
                   .bottom = std::min(minY(), other.minY()),
                   .top = std::max(maxY(), other.maxY())});
}

CGRect CGRect::insetBy(double dx, double dy) const noexcept {
    const CGRect inset(minX() + dx, minY() + dy, width() - dx * 2, height() - dy * 2);
    return isNull() || inset.size.width < 0 || inset.size.height < 0 ? null : inset;
}

CGRect CGRect::applying(const CGAffineTransform& t) const noexcept {
    if (isNull())
        return null;
    const auto [p, q, r, s] = std::array{bottomLeft().applying(t), bottomRight().applying(t),
                                         topRight().applying(t), topLeft().applying(t)};
    return CGRect({.left = std::min({p.x, q.x, r.x, s.x}),
                   .right = std::max({p.x, q.x, r.x, s.x}),
                   .bottom = std::min({p.y, q.y, r.y, s.y}),
                   .top = std::max({p.y, q.y, r.y, s.y})});
}

CGPoint CGRect::point(RectAnchor anchor) const noexcept {
    return {anchor.isLeft()    ? minX()
            : anchor.isRight() ? maxX()
                               : midX(),
            anchor.isBottom() ? minY()
            : anchor.isTop()  ? maxY()
                              : midY()};
}

CGRect CGRect::rect(RectAnchor anchor, CGSize size) const noexcept {
    return CGRect({.center = point(anchor), .size = size});
}

CGRect CGRect::square(RectAnchor anchor, double edgeSize) const noexcept {
    return CGRect({.center = point(anchor), .square = edgeSize});
}

namespace {

// One axis of a rectangle while its edges move; `far` is the standardised maximum before the move.
struct Axis {
    double& start;
    double& length;
    double far;

    void moveStart(double to) noexcept {
        length = far - to;
        start = to;
    }
    void moveEnd(double to) noexcept { length = to - start; }
    void expand(double to) noexcept {
        if (start > to)
            moveStart(to);
        else if (start < to)
            moveEnd(to);
    }
    bool straighten() noexcept {
        if (!(length < 0))
            return false;
        length = -length;
        start -= length;
        return true;
    }
};

} // namespace

void CGRect::expand(CGPoint to) noexcept {
    Axis{origin.x, size.width, maxX()}.expand(to.x);
    Axis{origin.y, size.height, maxY()}.expand(to.y);
}

RectAnchor CGRect::move(RectAnchor anchor, CGPoint to) noexcept {
    Axis horizontal{origin.x, size.width, maxX()};
    Axis vertical{origin.y, size.height, maxY()};
    if (anchor.isLeft())
        horizontal.moveStart(to.x);
    else if (anchor.isRight())
        horizontal.moveEnd(to.x);
    if (anchor.isBottom())
        vertical.moveStart(to.y);
    else if (anchor.isTop())
        vertical.moveEnd(to.y);
    if (vertical.straighten())
        anchor.flipVertical();
    if (horizontal.straighten())
        anchor.flipHorizontal();
    return anchor;
}

CGSize CGSize::clamping(double longest) const noexcept {
    const CGSize z = abs();
    if (!(z.width > longest || z.height > longest))
        return *this;
    if (z.height < z.width)
        return {longest, z.height / z.width * longest};
    return {z.width / z.height * longest, longest};
}

std::string CGSize::roundIntDesc() const {
    const auto [w, h] = roundIntWidthHeight();
    return std::to_string(w) + " x " + std::to_string(h);
}

} // namespace zorvan

std::size_t std::hash<zorvan::CGRect>::operator()(const zorvan::CGRect& rect) const noexcept {
    std::size_t result = 0;
    // Adding zero turns a negative zero, which equals zero, into it.
    for (const double edge : {rect.minX(), rect.minY(), rect.maxX(), rect.maxY()})
        result = (result ^ std::hash<double>{}(edge + 0.0)) * 0x9E3779B97F4A7C15U;
    return result;
}
