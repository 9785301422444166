#include <zorvan/platform/graphics/drawBitmap.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/internal/Resampler.h>
#include <zorvan/platform/graphics/internal/compositing.h>
#include <zorvan/platform/graphics/internal/orientPixels.h>

#include <algorithm>
#include <cmath>

namespace zorvan {
namespace {

/// Differences below this many pixels come from rounding in the transform.
constexpr double tolerance = 1e-6;

/// A transform that keeps the sides upright, taken apart: the picture is re-oriented by an EXIF
/// value, then stretched to `rect` of the target.
struct UprightPlacement {
    std::int64_t exifValue;
    CGRect rect;
};

std::int64_t exifValueOf(const CGAffineTransform& t, bool isTurned) noexcept {
    if (isTurned)
        return t.c > 0 ? (t.b > 0 ? 5 : 8) : (t.b > 0 ? 6 : 7);
    return t.a > 0 ? (t.d > 0 ? 1 : 4) : (t.d > 0 ? 2 : 3);
}

std::optional<UprightPlacement> uprightPlacement(const Bitmap& source, CGAffineTransform t) {
    const CGRect all = rectOf(source);
    const auto vanish = [&](double ofWidth, double ofHeight) {
        return std::abs(ofWidth) * all.width() < tolerance &&
               std::abs(ofHeight) * all.height() < tolerance;
    };
    const bool isUpright = vanish(t.b, t.c);
    const bool isTurned = vanish(t.a, t.d);
    if (!isUpright && !isTurned)
        return std::nullopt;
    if (isTurned)
        t.a = t.d = 0;
    else
        t.b = t.c = 0;
    return UprightPlacement{exifValueOf(t, isTurned), all.applying(t)};
}

/// A run of pixels along an axis of the target.
struct Run {
    std::int64_t first;
    std::int64_t count;
};

/// The pixels of `length` whose centres lie between the edges.
Run paintedRun(double from, double to, std::int64_t length) noexcept {
    const auto limit = static_cast<double>(length);
    const double first = std::clamp(std::ceil(from - 0.5 - tolerance), 0.0, limit);
    const double last = std::clamp(std::floor(to - 0.5 + tolerance) + 1, first, limit);
    return {static_cast<std::int64_t>(first), static_cast<std::int64_t>(last - first)};
}

bool isWhole(double value) noexcept { return std::abs(value - std::round(value)) < tolerance; }

/// Draws pictures whose sides stay upright.
class UprightDraw {
public:
    UprightDraw(const Bitmap& source, const UprightPlacement& placement, Bitmap& target,
                Backdrop backdrop)
        : source_(source), exifValue_(placement.exifValue), rect_(placement.rect), target_(target),
          backdrop_(backdrop), isTurned_(swapsSides(placement.exifValue)),
          columns_(paintedRun(rect_.minX(), rect_.maxX(), target.width())),
          rows_(paintedRun(rect_.minY(), rect_.maxY(), target.height())) {}

    void draw() const {
        if (columns_.count < 1 || rows_.count < 1)
            return;
        PixelView window =
            view(target_).window(columns_.first, rows_.first, columns_.count, rows_.count);
        if (backdrop_ == Backdrop::transparent)
            return paint(window);
        Bitmap layer =
            allocated(BitmapAccess::makeUndefined(window.width, window.height, target_.layout()));
        paint(view(layer));
        compositeOver(view(layer), window, target_.layout());
    }

private:
    void paint(PixelView window) const {
        if (movesWholePixels())
            return orientPixels(shownPixels(), exifValue_, window);
        if (!isTurned_)
            return stretch(window);
        // Into a layer that is still lying on its side; turning it is exact.
        Bitmap layer =
            allocated(BitmapAccess::makeUndefined(window.height, window.width, target_.layout()));
        stretch(view(layer));
        orientPixels(view(layer), 5, window);
    }

    void stretch(PixelView to) const {
        const AxisPlacement across{source_.width(), isTurned_ ? rect_.minY() : rect_.minX(),
                                   isTurned_ ? rect_.height() : rect_.width(), mirrorsX()};
        const AxisPlacement down{source_.height(), isTurned_ ? rect_.minX() : rect_.minY(),
                                 isTurned_ ? rect_.width() : rect_.height(), mirrorsY()};
        const Run x = isTurned_ ? rows_ : columns_;
        const Run y = isTurned_ ? columns_ : rows_;
        resample(view(source_), AxisWeights(across, x.first, x.count),
                 AxisWeights(down, y.first, y.count), to, target_.layout());
    }

    /// Whether the source's left side, or its top, is shown last.
    bool mirrorsX() const noexcept {
        return exifValue_ == 2 || exifValue_ == 3 || exifValue_ == 7 || exifValue_ == 8;
    }
    bool mirrorsY() const noexcept {
        return exifValue_ == 3 || exifValue_ == 4 || exifValue_ == 6 || exifValue_ == 7;
    }

    bool movesWholePixels() const noexcept {
        const auto width = static_cast<double>(isTurned_ ? source_.height() : source_.width());
        const auto height = static_cast<double>(isTurned_ ? source_.width() : source_.height());
        return std::abs(rect_.width() - width) < tolerance &&
               std::abs(rect_.height() - height) < tolerance && isWhole(rect_.minX()) &&
               isWhole(rect_.minY());
    }

    /// The part of the source that falls on the target, when whole pixels are moved.
    ConstPixelView shownPixels() const noexcept {
        const auto left = static_cast<std::int64_t>(std::round(rect_.minX()));
        const auto top = static_cast<std::int64_t>(std::round(rect_.minY()));
        const Run acrossTarget{columns_.first - left, columns_.count};
        const Run downTarget{rows_.first - top, rows_.count};
        const Run x = shown(isTurned_ ? downTarget : acrossTarget, source_.width(), mirrorsX());
        const Run y = shown(isTurned_ ? acrossTarget : downTarget, source_.height(), mirrorsY());
        return view(source_).window(x.first, y.first, x.count, y.count);
    }

    static Run shown(Run run, std::int64_t sourceLength, bool isMirrored) noexcept {
        return {isMirrored ? sourceLength - run.first - run.count : run.first, run.count};
    }

    const Bitmap& source_;
    std::int64_t exifValue_;
    CGRect rect_;
    Bitmap& target_;
    Backdrop backdrop_;
    bool isTurned_;
    Run columns_;
    Run rows_;
};

std::int64_t shrunkSide(std::int64_t side, double scale) noexcept {
    if (scale >= 1)
        return side;
    return std::max<std::int64_t>(
        1, static_cast<std::int64_t>(std::round(static_cast<double>(side) * scale)));
}

void drawSlanted(const Bitmap& source, const CGAffineTransform& t, Bitmap& target) {
    const std::int64_t width = shrunkSide(source.width(), std::hypot(t.a, t.b));
    const std::int64_t height = shrunkSide(source.height(), std::hypot(t.c, t.d));
    if (width == source.width() && height == source.height())
        return compositeTransformed(view(source), t, view(target), target.layout());
    Bitmap layer = allocated(BitmapAccess::makeUndefined(width, height, source.layout()));
    const double scaleX = static_cast<double>(width) / static_cast<double>(source.width());
    const double scaleY = static_cast<double>(height) / static_cast<double>(source.height());
    resample(view(source), AxisWeights({source.width(), 0, static_cast<double>(width)}, 0, width),
             AxisWeights({source.height(), 0, static_cast<double>(height)}, 0, height), view(layer),
             source.layout());
    compositeTransformed(view(layer), t.scaledBy(1 / scaleX, 1 / scaleY), view(target),
                         target.layout());
}

bool isDrawable(const CGAffineTransform& t, const Bitmap& source) noexcept {
    const double determinant = t.a * t.d - t.b * t.c;
    const CGRect bounds = rectOf(source).applying(t);
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(bounds.minX()) &&
           std::isfinite(bounds.minY()) && std::isfinite(bounds.maxX()) &&
           std::isfinite(bounds.maxY());
}

} // namespace

void drawBitmap(const Bitmap& source, const CGAffineTransform& transform, Bitmap& target,
                Backdrop backdrop) {
    if (!isDrawable(transform, source))
        return;
    if (source.layout() != target.layout())
        return drawBitmap(allocated(copied(source, target.layout())), transform, target, backdrop);
    if (const auto placement = uprightPlacement(source, transform))
        UprightDraw(source, *placement, target, backdrop).draw();
    else
        drawSlanted(source, transform, target);
}

} // namespace zorvan
