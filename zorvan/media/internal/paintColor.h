#pragma once

#include <zorvan/colour/CGColor.h>
#include <zorvan/platform/graphics/DrawingTarget.h>

namespace zorvan {

inline PaintColor paintColor(const CGColor& color) noexcept {
    const RGBA& c = color.rgba();
    return {c.r, c.g, c.b, c.a};
}

} // namespace zorvan
