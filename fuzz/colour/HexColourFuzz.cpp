#include <zorvan/colour/RGBA.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// Whatever the text, what is read has components from 0 to 1 and survives being written and read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto colour = zorvan::RGBA::make({.hexString = text});
    if (!colour)
        return 0;
    for (const double component : {colour->r, colour->g, colour->b, colour->a})
        if (!(component >= 0 && component <= 1))
            std::abort();
    if (zorvan::RGBA::make({.hexString = colour->hexString()}) != colour)
        std::abort();
    return 0;
}
