// Colours and tints from one accent
//
// Link Zorvan::Colour.

#include <zorvan/colour/LAB.h>
#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/RGB.h>

#include <iostream>

using namespace zorvan;

int main() {
    const NSColor accent = NSColor::make({.hexString = "#F80"}).value_or(NSColor::orange);
    std::cout << "accent   " << accent.hexString() << '\n';
    std::cout << "pressed  " << accent.blended(0.25, NSColor::black).hexString() << '\n';
    std::cout << "hovered  " << accent.blended(0.25, NSColor::white).hexString() << '\n';
    std::cout << "disabled " << accent.withAlphaBlending(0.5).hexString() << '\n';

    // Text on it: black or white, by the lightness that the eye sees.
    const RGB bytes({.unitR = accent.redComponent(),
                     .unitG = accent.greenComponent(),
                     .unitB = accent.blueComponent()});
    const bool isLight = bytes.xyz().lab().l > 60;
    std::cout << "text     " << (isLight ? NSColor::black : NSColor::white).hexString() << '\n';
}
