#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/RGBA.h>

#include <QColor>
#include <optional>

namespace zorvan {

/// The colour for Qt, which keeps 16 bits a component; components are clamped to 0 to 1, NaN
/// becomes 0.
/// @{
[[nodiscard]] QColor toQColor(const RGBA& colour);
[[nodiscard]] QColor toQColor(const NSColor& colour);
/// @}

/// A colour of any of Qt's models. Components of 8 bits come out exactly as those of a hexadecimal
/// colour do. Absent for an invalid colour.
[[nodiscard]] std::optional<RGBA> toRGBA(const QColor& colour);
/// The same, clamped to 0 to 1.
[[nodiscard]] std::optional<NSColor> toNSColor(const QColor& colour);

} // namespace zorvan
