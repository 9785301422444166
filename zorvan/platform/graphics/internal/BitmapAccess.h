#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

namespace zorvan {

/// What only the transforms may do with a bitmap: make one whose every pixel they are about to
/// write.
struct BitmapAccess {
    static std::optional<Bitmap> makeUndefined(std::int64_t width, std::int64_t height,
                                               BitmapLayout layout) {
        return Bitmap::make(width, height, layout, Bitmap::Contents::undefined);
    }
};

} // namespace zorvan
