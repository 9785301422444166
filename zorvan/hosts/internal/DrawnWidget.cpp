#include <zorvan/hosts/internal/DrawnWidget.h>

#include <cmath>
#include <optional>
#include <typeinfo>

namespace zorvan::internal {

namespace {

/// Grown so far that its edges fall on whole pixels also where a point has quarters of them.
QRect aligned(const QRect& part, double scale) {
    constexpr int grid = 4;
    if (scale == std::floor(scale))
        return part;
    const auto down = [](int edge) { return edge - ((edge % grid) + grid) % grid; };
    return {QPoint(down(part.left()), down(part.top())),
            QPoint(down(part.right()) + grid - 1, down(part.bottom()) + grid - 1)};
}

} // namespace

void paintView(const NSView& view, QWidget& widget, const QRect& changed) {
    if (typeid(view) == typeid(NSView))
        return; // which draws nothing
    const double scale = widget.devicePixelRatioF();
    const QRect part = aligned(changed, scale);
    const auto pixels = [scale](int length) {
        return static_cast<std::int64_t>(std::ceil(length * scale));
    };
    std::optional<Bitmap> bitmap = Bitmap::make(pixels(part.width()), pixels(part.height()));
    if (!bitmap)
        return;
    // The whole view, as seen through the part.
    const Canvas through(*bitmap, scale);
    const CGRect bounds = view.bounds();
    const double top = through.clip().height() + part.y();
    Canvas canvas = through.inside(
        {-static_cast<double>(part.x()), top - bounds.height(), bounds.width(), bounds.height()},
        bounds, view.isFlipped());
    if (canvas.clip().isNull())
        return;
    view.draw(canvas);
    QImage image(bitmap->data(), static_cast<int>(bitmap->width()),
                 static_cast<int>(bitmap->height()), static_cast<qsizetype>(bitmap->bytesPerRow()),
                 QImage::Format_RGBA8888_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&widget);
    painter.setClipRect(changed);
    painter.drawImage(QPointF(part.topLeft()), image);
}

} // namespace zorvan::internal
