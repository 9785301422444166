// Whatever the text, what is read has components from 0 to 1 and survives being written and read.

#include <fuzz/Fuzzing.h>
#include <zorvan/colour/RGBA.h>

using zorvan::RGBA;

void tryOut(std::span<const std::uint8_t> input) {
    const auto colour = RGBA::make({.hexString = textOf(input)});
    if (!colour)
        return;
    for (const double component : {colour->r, colour->g, colour->b, colour->a})
        require(component >= 0 && component <= 1);
    require(RGBA::make({.hexString = colour->hexString()}) == colour);
}
