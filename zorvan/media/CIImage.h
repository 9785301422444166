#pragma once

#include <zorvan/media/CGImage.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/NameLiteral.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/graphics/CGPath.h>

#include <functional>
#include <memory>
#include <vector>

namespace zorvan {

class CIFilter;

/// An option of `autoAdjusted`: whether tones and colours are adjusted at all; true when missing.
inline constexpr NameLiteral kCIImageAutoAdjustEnhance = "kCIImageAutoAdjustEnhance";

/// A recipe for a picture: the picture it begins with, where that is moved to, and what becomes of
/// its colours. No pixel is computed before a `CIContext` draws it. Never changes, and may be
/// shared between threads.
///
/// Transforms that follow each other become one, so the pixels are resampled once. Coordinates have
/// y growing upward and need no whole numbers; beyond its extent a picture is transparent.
class CIImage : public std::enable_shared_from_this<CIImage> {
    struct Key {};

public:
    using Pointer = std::shared_ptr<const CIImage>; ///< How a recipe is held.

    /// Changes `count` pixels: red, green, blue and alpha, not premultiplied, from 0 to 1 unless an
    /// earlier change went beyond that. Called from several threads at once.
    using PixelChange = std::function<void(float* pixels, std::int64_t count)>;

    /// At the origin, one unit a pixel. Empty when the picture is.
    static Pointer create(const CGImage::Pointer& image);
    /// The first picture of a file, as it is stored; empty when it cannot be read.
    static Pointer create(const URL& contentsOf);

    /// Around the picture; `null` when nothing is left of it.
    CGRect extent() const noexcept { return extent_; }

    /// Moved, turned and scaled by the map.
    [[nodiscard]] Pointer transformed(const CGAffineTransform& by) const;
    /// What of it lies in the rectangle.
    [[nodiscard]] Pointer cropped(const CGRect& to) const;
    /// With the change after those there are.
    [[nodiscard]] Pointer changingPixels(PixelChange change) const;

    /// Moved so that its middle is that of the rectangle.
    [[nodiscard]] Pointer centered(const CGRect& in) const;
    /// Scaled about the origin, alike on both axes, to just cover the size of the rectangle.
    [[nodiscard]] Pointer aspectFill(const CGRect& in) const;
    /// The same, to just fit in it.
    [[nodiscard]] Pointer aspectFit(const CGRect& in) const;

    /// Half as opaque. The factor is taken for the sake of callers that have one, and not used.
    [[nodiscard]] Pointer withAlphaBlending(double factor) const;
    /// Half as bright. The factor is not used.
    [[nodiscard]] Pointer withColorBlending(double factor) const;

    /// Runs the filters in order, each on what the one before it made; a filter that makes nothing,
    /// and none at all, leave the picture as it is. Without filters this very picture.
    [[nodiscard]] Pointer applying(const std::vector<std::shared_ptr<CIFilter>>& filters) const;

    /// Through `autoAdjustmentFilters`.
    [[nodiscard]] Pointer autoAdjusted(const PropertyList::Dictionary& options = {}) const;

    /// What makes this picture look better, none when nothing does: a balance of colours, then a
    /// tone curve. The picture is drawn small for that.
    ///
    /// - Colours: the mean of the pixels that are nearly grey is moved towards grey, by at most a
    ///   third. Pixels of the hues of skin, whatever its shade, do not count, so a face that fills
    ///   the picture is no reason to cool it.
    /// - Tones: the brightness that all but half a percent reach goes to black, and the one that
    ///   half a percent exceed to white, by a factor of at most 8; then dark middles are raised. A
    ///   picture of nearly one brightness is left as it is.
    [[nodiscard]] std::vector<std::shared_ptr<CIFilter>>
    autoAdjustmentFilters(const PropertyList::Dictionary& options = {}) const;

    /// For `create`.
    explicit CIImage(Key) noexcept {}

private:
    friend class CIContext;

    std::shared_ptr<CIImage> copy() const;

    CGImage::Pointer source_;
    /// From the pixels of the source, y downward.
    CGAffineTransform placement_;
    CGRect extent_;
    std::vector<CGPath> crops_;
    std::vector<PixelChange> changes_;
};

} // namespace zorvan
