#include <zorvan/platform/graphics/internal/compositing.h>

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <new>

#include <pixman.h>

namespace zorvan {
namespace {

using PixmanImage = std::unique_ptr<pixman_image_t, Release<pixman_image_unref>>;

/// Pixman counts in 16.16 numbers, so it is only ever shown pieces of a picture: the target in
/// tiles, and of the source the window that a tile needs.
constexpr std::int64_t tileSide = 256;
constexpr double largestWindow = 16000;

PixmanImage wrapped(ConstPixelView pixels, BitmapLayout layout) {
    // Where alpha stands is all that matters here: colours keep their places, whatever they are.
    const pixman_format_code_t format =
        layout == BitmapLayout::rgba ? PIXMAN_a8r8g8b8 : PIXMAN_b8g8r8a8;
    auto* const words = reinterpret_cast<std::uint32_t*>(const_cast<std::uint8_t*>(pixels.first));
    PixmanImage image(pixman_image_create_bits_no_clear(format, static_cast<int>(pixels.width),
                                                        static_cast<int>(pixels.height), words,
                                                        static_cast<int>(pixels.bytesPerRow)));
    if (!image)
        throw std::bad_alloc();
    return image;
}

ConstPixelView part(ConstPixelView whole, const PixelRect& tile) noexcept {
    return whole.window(tile.x, tile.y, tile.width, tile.height);
}

/// Calls `draw` with the tiles of a target, on all processors.
template <class Draw>
void forEachTile(PixelView target, Draw draw) {
    const std::int64_t across = (target.width - 1) / tileSide + 1;
    const std::int64_t down = (target.height - 1) / tileSide + 1;
    parallelRows(across * down, 1, [&](std::int64_t first, std::int64_t last) {
        for (std::int64_t i = first; i < last; ++i) {
            const std::int64_t x = i % across * tileSide;
            const std::int64_t y = i / across * tileSide;
            draw(PixelRect{x, y, std::min(tileSide, target.width - x),
                           std::min(tileSide, target.height - y)});
        }
    });
}

/// Lays what the mask lets through, or all, over a target of the tile's size.
void lay(const PixmanImage& source, const PixmanImage& mask, const PixmanImage& target,
         const PixelRect& tile) {
    pixman_image_composite32(PIXMAN_OP_OVER, source.get(), mask.get(), target.get(), 0, 0, 0, 0, 0,
                             0, static_cast<int>(tile.width), static_cast<int>(tile.height));
}

/// How much of a pixel lies between two parallel edges: `near` and `far` are the distances of its
/// centre from them, inward, in pixels.
double coverage(double near, double far) noexcept {
    return std::max(0.0, std::clamp(near + 0.5, 0.0, 1.0) + std::clamp(far + 0.5, 0.0, 1.0) - 1);
}

class TransformedDraw {
public:
    TransformedDraw(ConstPixelView source, const CGAffineTransform& transform, PixelView target,
                    BitmapLayout layout)
        : source_(source), target_(target), layout_(layout), inverse_(transform.inverted()),
          gradientX_(std::hypot(inverse_.a, inverse_.c)),
          gradientY_(std::hypot(inverse_.b, inverse_.d)) {}

    void draw(const PixelRect& tile) const {
        const Coverage covered = coverageOf(tile);
        if (covered == Coverage::none)
            return;
        const Window window = windowOf(tile);
        if (window.isTooLarge)
            return drawQuarters(tile);
        const PixmanImage source = wrapped(part(source_, window.tile), layout_);
        setTransform(source.get(), tile, window.tile);
        pixman_image_set_filter(source.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
        pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_PAD);
        lay(source, covered == Coverage::full ? nullptr : maskOf(tile),
            wrapped(part(target_, tile), layout_), tile);
    }

private:
    enum class Coverage { none, partial, full };
    struct Window {
        PixelRect tile;
        bool isTooLarge;
    };

    /// How far the centre of a target pixel lies inside the four edges, in target pixels.
    std::array<double, 4> distances(std::int64_t x, std::int64_t y) const noexcept {
        const CGPoint p =
            CGPoint(static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5).applying(inverse_);
        return {p.x / gradientX_, (static_cast<double>(source_.width) - p.x) / gradientX_,
                p.y / gradientY_, (static_cast<double>(source_.height) - p.y) / gradientY_};
    }

    /// Distances are linear, so the corners of the tile have the smallest and the largest.
    Coverage coverageOf(const PixelRect& tile) const noexcept {
        const std::int64_t right = tile.x + tile.width - 1;
        const std::int64_t bottom = tile.y + tile.height - 1;
        const std::array corners{distances(tile.x, tile.y), distances(right, tile.y),
                                 distances(tile.x, bottom), distances(right, bottom)};
        Coverage result = Coverage::full;
        for (std::size_t edge = 0; edge < 4; ++edge) {
            const auto [least, most] = std::minmax(
                {corners[0][edge], corners[1][edge], corners[2][edge], corners[3][edge]});
            if (most <= -0.5)
                return Coverage::none;
            if (least < 0.5)
                result = Coverage::partial;
        }
        return result;
    }

    PixmanImage maskOf(const PixelRect& tile) const {
        PixmanImage mask(pixman_image_create_bits(PIXMAN_a8, static_cast<int>(tile.width),
                                                  static_cast<int>(tile.height), nullptr, 0));
        if (!mask)
            throw std::bad_alloc();
        auto* const bytes = reinterpret_cast<std::uint8_t*>(pixman_image_get_data(mask.get()));
        const int bytesPerRow = pixman_image_get_stride(mask.get());
        for (std::int64_t y = 0; y < tile.height; ++y)
            for (std::int64_t x = 0; x < tile.width; ++x) {
                const auto [left, right, top, bottom] = distances(tile.x + x, tile.y + y);
                bytes[y * bytesPerRow + x] = static_cast<std::uint8_t>(
                    coverage(left, right) * coverage(top, bottom) * 255 + 0.5);
            }
        return mask;
    }

    /// What of the source shows in the tile, with the neighbours that interpolation asks for.
    Window windowOf(const PixelRect& tile) const {
        const CGRect bounds =
            CGRect(static_cast<double>(tile.x), static_cast<double>(tile.y),
                   static_cast<double>(tile.width), static_cast<double>(tile.height))
                .applying(inverse_);
        const double width = static_cast<double>(source_.width);
        const double height = static_cast<double>(source_.height);
        const double left = std::clamp(std::floor(bounds.minX()) - 2, 0.0, width - 1);
        const double top = std::clamp(std::floor(bounds.minY()) - 2, 0.0, height - 1);
        const double right = std::clamp(std::ceil(bounds.maxX()) + 2, left + 1, width);
        const double bottom = std::clamp(std::ceil(bounds.maxY()) + 2, top + 1, height);
        return {{static_cast<std::int64_t>(left), static_cast<std::int64_t>(top),
                 static_cast<std::int64_t>(right - left), static_cast<std::int64_t>(bottom - top)},
                std::max(bounds.width(), bounds.height()) > largestWindow};
    }

    /// A tile of one pixel that still shows too much is a sliver of the picture that is not seen.
    void drawQuarters(const PixelRect& tile) const {
        const std::int64_t half = std::max(tile.width, tile.height) / 2;
        if (half < 1)
            return;
        for (std::int64_t y = 0; y < tile.height; y += half)
            for (std::int64_t x = 0; x < tile.width; x += half)
                draw({tile.x + x, tile.y + y, std::min(half, tile.width - x),
                      std::min(half, tile.height - y)});
    }

    void setTransform(pixman_image_t* image, const PixelRect& tile, const PixelRect& window) const {
        const CGPoint origin =
            CGPoint(static_cast<double>(tile.x), static_cast<double>(tile.y)).applying(inverse_);
        const pixman_f_transform real{
            {{inverse_.a, inverse_.c, origin.x - static_cast<double>(window.x)},
             {inverse_.b, inverse_.d, origin.y - static_cast<double>(window.y)},
             {0, 0, 1}}};
        pixman_transform fixed;
        if (pixman_transform_from_pixman_f_transform(&fixed, &real))
            pixman_image_set_transform(image, &fixed);
    }

    ConstPixelView source_;
    PixelView target_;
    BitmapLayout layout_;
    CGAffineTransform inverse_;
    double gradientX_;
    double gradientY_;
};

} // namespace

void compositeOver(ConstPixelView source, PixelView target, BitmapLayout layout) {
    forEachTile(target, [&](const PixelRect& tile) {
        lay(wrapped(part(source, tile), layout), nullptr, wrapped(part(target, tile), layout),
            tile);
    });
}

void compositeTransformed(ConstPixelView source, const CGAffineTransform& transform,
                          PixelView target, BitmapLayout layout) {
    const TransformedDraw drawing(source, transform, target, layout);
    forEachTile(target, [&](const PixelRect& tile) { drawing.draw(tile); });
}

} // namespace zorvan
