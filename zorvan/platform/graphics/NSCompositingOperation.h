#pragma once

namespace zorvan {

/// How what is drawn meets what is there. "Source" is what is drawn, "destination" what is there;
/// an operation acts only where something is drawn, and there only as far as it covers a pixel.
enum class NSCompositingOperation {
    clear = 0,           ///< Nothing is left.
    copy = 1,            ///< The source alone.
    sourceOver = 2,      ///< The source over the destination; what is usual.
    sourceIn = 3,        ///< The source where the destination is opaque.
    sourceOut = 4,       ///< The source where the destination is transparent.
    sourceAtop = 5,      ///< The source over the destination, where that is opaque.
    destinationOver = 6, ///< The destination over the source.
    destinationIn = 7,   ///< The destination where the source is opaque.
    destinationOut = 8,  ///< The destination where the source is transparent.
    destinationAtop = 9, ///< The destination over the source, where that is opaque.
    XOR = 10,            ///< Each where the other is transparent.
    plusDarker = 11,     ///< The sum of what both keep back from white.
    highlight = 12,      ///< The same as `sourceOver`.
    plusLighter = 13,    ///< The sum of both.
    /// The blend mode of that name.
    /// @{
    multiply = 14,
    screen = 15,
    overlay = 16,
    darken = 17,
    lighten = 18,
    colorDodge = 19,
    colorBurn = 20,
    softLight = 21,
    hardLight = 22,
    difference = 23,
    exclusion = 24,
    hue = 25,
    saturation = 26,
    color = 27,
    luminosity = 28,
    /// @}
};

} // namespace zorvan
