#pragma once

#include <zorvan/platform/graphics/NSCompositingOperation.h>
#include <zorvan/platform/graphics/internal/CairoDrawing.h>

#include <cstdint>

namespace zorvan {

/// Whether the operation is one of those that Cairo lacks, or that mix colours with each other,
/// which Cairo does coarsely where pixels are nearly transparent.
bool isBlendedByUs(NSCompositingOperation operation) noexcept;

/// Lays `count` premultiplied pixels over those of the target, by such an operation. Both in the
/// order.
void blendPixels(NSCompositingOperation operation, ChannelOrder order, const std::uint8_t* source,
                 std::uint8_t* target, std::int64_t count) noexcept;

} // namespace zorvan
