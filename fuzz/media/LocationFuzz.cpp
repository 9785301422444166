// ISO 6709 text: what is read does not depend on what follows, and is a number.

#include <fuzz/Fuzzing.h>
#include <zorvan/media/Location.h>

#include <cmath>

using zorvan::Location;

void tryOut(std::span<const std::uint8_t> input) {
    const std::string text(textOf(input));
    const auto location = Location::make({.iso6709 = text});
    if (!location)
        return;
    // Two digits of degrees, 99 minutes and 99 seconds at the most.
    require(std::abs(location->latitude) < 102 && std::abs(location->longitude) < 1002);
    require(Location::make({.iso6709 = " " + text + "\n"}) == location);
}
