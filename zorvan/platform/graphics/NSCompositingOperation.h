#pragma once

namespace zorvan {

/// How what is drawn meets what is there. "Source" is what is drawn, "destination" what is there;
/// an operation acts only where something is drawn, and there only as far as it covers a pixel.
enum class NSCompositingOperation {
    clear = 0,
    copy = 1,
    sourceOver = 2,
    sourceIn = 3,
    sourceOut = 4,
    sourceAtop = 5,
    destinationOver = 6,
    destinationIn = 7,
    destinationOut = 8,
    destinationAtop = 9,
    XOR = 10,
    /// The sum of what both keep back from white.
    plusDarker = 11,
    /// The same as `sourceOver`.
    highlight = 12,
    plusLighter = 13,
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
};

} // namespace zorvan
