// Tints of an accent, and text that can be read on it.
// Link Zorvan::Colour.

#include <zorvan/colour.h>

#include <iostream>

using namespace zorvan;

int main() {
    const NSColor accent = NSColor::make({.hexString = "#F80"}).value_or(NSColor::orange);
    std::cout << accent.blended(0.25, NSColor::black).hexString() << " pressed, "
              << accent.withAlphaBlending(0.5).hexString() << " disabled\n";

    const std::uint8_t pixels[] = {255, 136, 0, 20, 20, 60}; // red, green and blue of two
    LAB seen[2];
    convertToLAB(pixels, seen);
    for (const LAB& lab : seen) // by the lightness that the eye sees
        std::cout << (lab.l > 60 ? "black" : "white") << " text\n";
}
