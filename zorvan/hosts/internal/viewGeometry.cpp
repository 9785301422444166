#include <zorvan/hosts/internal/viewGeometry.h>

#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace zorvan::internal {

namespace {

int held(double position) {
    constexpr double most = QWIDGETSIZE_MAX;
    return std::isnan(position) ? 0
                                : static_cast<int>(std::round(std::clamp(position, -most, most)));
}

} // namespace

int wholeLength(double points) { return std::max(held(std::ceil(points)), 0); }

QSize toQSize(CGSize size) { return {wholeLength(size.width), wholeLength(size.height)}; }

QRect toWidget(const NSView& view, const CGRect& part) {
    const CGRect shown = view.bounds();
    const double left = part.minX() - shown.minX();
    const double top = view.isFlipped() ? part.minY() - shown.minY() : shown.maxY() - part.maxY();
    // Edges are rounded, not sizes, so that neighbours meet.
    const QPoint corner(held(left), held(top));
    return {corner,
            QSize(held(left + part.width()) - corner.x(), held(top + part.height()) - corner.y())};
}

QRect placeInSuperview(const NSView& view) {
    const auto holder = view.superview();
    return holder ? toWidget(*holder, view.frame()) : QRect(QPoint(), toQSize(view.frame().size));
}

CGPoint toView(const NSView& view, const QPointF& point) {
    const CGRect shown = view.bounds();
    return {shown.minX() + point.x(),
            view.isFlipped() ? shown.minY() + point.y() : shown.maxY() - point.y()};
}

QImage imageOver(const Bitmap& bitmap) {
    return {bitmap.data(), static_cast<int>(bitmap.width()), static_cast<int>(bitmap.height()),
            static_cast<qsizetype>(bitmap.bytesPerRow()), QImage::Format_RGBA8888_Premultiplied};
}

void fitBar(QScrollBar& bar, double length, int seen) {
    constexpr double most = 1 << 30; // Qt adds lengths up
    const double hidden = std::min(std::ceil(length) - seen, most);
    bar.setPageStep(seen);
    bar.setRange(0, hidden > 0 ? static_cast<int>(hidden) : 0);
}

void moveBar(QScrollBar& bar, double to) {
    bar.setValue(
        static_cast<int>(std::clamp<double>(std::round(to), bar.minimum(), bar.maximum())));
}

} // namespace zorvan::internal
