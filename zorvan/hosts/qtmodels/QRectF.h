#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/numbers-geometry/NSEdgeInsets.h>

#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTransform>
#include <optional>

namespace zorvan {

/// Numbers are taken over as they are. In a view of Qt y grows downward: turn what is meant for one
/// over yourself, with the height of the view.
/// @{
[[nodiscard]] inline QPointF toQPointF(CGPoint p) { return {p.x, p.y}; }
[[nodiscard]] inline CGPoint toCGPoint(const QPointF& p) { return {p.x(), p.y()}; }

[[nodiscard]] inline QSizeF toQSizeF(CGSize s) { return {s.width, s.height}; }
[[nodiscard]] inline CGSize toCGSize(const QSizeF& s) { return {s.width(), s.height()}; }
/// @}

/// Of the stored values. `CGRect::null` becomes Qt's null rectangle, which is `CGRect::zero` on the
/// way back.
/// @{
[[nodiscard]] inline QRectF toQRectF(const CGRect& r) {
    return r.isNull() ? QRectF() : QRectF(toQPointF(r.origin), toQSizeF(r.size));
}
[[nodiscard]] inline CGRect toCGRect(const QRectF& r) {
    return {toCGPoint(r.topLeft()), toCGSize(r.size())};
}
/// @}

/// Each side for itself: `top` stays `top`, whichever way y grows.
/// @{
[[nodiscard]] inline QMarginsF toQMarginsF(const NSEdgeInsets& i) {
    return {i.left, i.top, i.right, i.bottom};
}
[[nodiscard]] inline NSEdgeInsets toNSEdgeInsets(const QMarginsF& m) {
    return {m.top(), m.left(), m.bottom(), m.right()};
}
/// @}

/// Numbers are taken over as they are; every transform has one for Qt.
[[nodiscard]] inline QTransform toQTransform(const CGAffineTransform& t) {
    return {t.a, t.b, t.c, t.d, t.tx, t.ty};
}
/// Absent for a transform that is not affine.
[[nodiscard]] inline std::optional<CGAffineTransform> toCGAffineTransform(const QTransform& t) {
    if (!t.isAffine())
        return std::nullopt;
    return CGAffineTransform(t.m11(), t.m12(), t.m21(), t.m22(), t.dx(), t.dy());
}

} // namespace zorvan
