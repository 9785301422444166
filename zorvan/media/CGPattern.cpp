#include <zorvan/media/CGContext.h>
#include <zorvan/media/internal/patternPaint.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace zorvan {

namespace {

/// The most pixels on a side of a cell; a larger one is drawn smaller and enlarged.
constexpr double maximumSide = 4096;
/// How many repetitions may overlap one cell on each side.
constexpr int maximumOverlap = 16;

double stepOr(double step, double side) noexcept {
    return std::isfinite(step) && step != 0 ? std::abs(step) : side;
}

std::int64_t cellSide(double pixels) noexcept {
    return static_cast<std::int64_t>(std::clamp(std::round(pixels), 1.0, maximumSide));
}

/// The neighbours that reach into a cell of that step.
int overlapOf(double side, double step) noexcept {
    return static_cast<int>(std::min(std::ceil(side / step) - 1, double{maximumOverlap}));
}

} // namespace

PatternPaint patternPaint(const CGPattern& pattern, const CGAffineTransform& toPixels,
                          double alpha) {
    const CGRect& bounds = pattern.bounds;
    const CGAffineTransform matrix = pattern.matrix.concatenating(toPixels);
    const double stepX = stepOr(pattern.xStep, bounds.width());
    const double stepY = stepOr(pattern.yStep, bounds.height());
    const double scaleX = std::hypot(matrix.a, matrix.b), scaleY = std::hypot(matrix.c, matrix.d);
    if (bounds.isEmpty() || !std::isfinite(stepX * scaleX) || !std::isfinite(stepY * scaleY))
        return {};
    const std::int64_t width = cellSide(stepX * scaleX), height = cellSide(stepY * scaleY);
    std::optional<Bitmap> cell = Bitmap::make(width, height);
    if (!cell)
        return {};
    const double x = static_cast<double>(width) / stepX, y = static_cast<double>(height) / stepY;
    const auto context = CGContext::create(*cell);
    // Repetitions that are larger than their distance reach into the cells after them.
    for (int row = -overlapOf(bounds.height(), stepY); row <= 0; ++row)
        for (int column = -overlapOf(bounds.width(), stepX); column <= 0; ++column)
            context->useTemporaryGState([&] {
                context->scaleBy(x, y);
                context->translateBy(column * stepX - bounds.minX(), row * stepY - bounds.minY());
                context->clip(bounds);
                pattern.draw.value(*context);
            });
    // From the pixels of the cell, y downward, to the pattern and on.
    const CGAffineTransform toPattern(1 / x, 0, 0, -1 / y, bounds.minX(), bounds.minY() + stepY);
    return {std::make_shared<const Bitmap>(std::move(*cell)), toPattern.concatenating(matrix),
            alpha};
}

} // namespace zorvan
