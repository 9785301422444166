// ISO 6709 text: what is read does not depend on what follows, and is a number.

#include <zorvan/media/Location.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace zorvan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    const auto location = Location::make({.iso6709 = text});
    if (!location)
        return 0;
    // Two digits of degrees, 99 minutes and 99 seconds at the most.
    if (!(std::abs(location->latitude) < 102) || !(std::abs(location->longitude) < 1002))
        std::abort();
    if (Location::make({.iso6709 = " " + text + "\n"}) != location)
        std::abort();
    return 0;
}
