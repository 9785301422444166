#pragma once

#include <zorvan/platform/graphics/internal/PixelView.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zorvan {

/// Where the whole of a source axis lies on the target axis, both counted in pixels.
struct AxisPlacement {
    std::int64_t sourceLength;
    double origin;
    double length;
    /// Whether the last source pixel comes first.
    bool isMirrored = false;
};

/// How a run of target pixels is mixed from source pixels along one axis: by exact area average
/// where the picture shrinks, by Catmull-Rom interpolation where it does not. A pixel at the
/// picture's edge is mixed from the part of it that the picture covers.
class AxisWeights {
public:
    /// For target pixels `first` to `first + count - 1`, whose centres lie on the picture.
    AxisWeights(const AxisPlacement& placement, std::int64_t first, std::int64_t count);

    struct Taps {
        std::int64_t first;
        std::int64_t count;
        const float* weights;
    };
    Taps taps(std::int64_t pixel) const noexcept {
        const Range& range = ranges_[static_cast<std::size_t>(pixel)];
        return {range.first, range.count, weights_.data() + range.offset};
    }

private:
    struct Range {
        std::int64_t first;
        std::int64_t count;
        std::size_t offset;
    };

    void addAverage(double from, double to, std::int64_t sourceLength);
    void addInterpolation(double position, std::int64_t sourceLength);

    std::vector<Range> ranges_;
    std::vector<float> weights_;
};

/// Fills `target`, one taps entry of `columns` and `rows` a pixel, on all processors. Throws
/// `std::bad_alloc`.
void resample(ConstPixelView source, const AxisWeights& columns, const AxisWeights& rows,
              PixelView target, BitmapLayout layout);

} // namespace zorvan
