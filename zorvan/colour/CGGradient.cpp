#include <zorvan/colour/CGGradient.h>

#include <algorithm>
#include <cstddef>

namespace zorvan {

namespace {

std::vector<double> evenLocations(std::size_t count) {
    std::vector<double> locations(count);
    for (std::size_t i = 1; i < count; ++i)
        locations[i] = static_cast<double>(i) / static_cast<double>(count - 1);
    return locations;
}

} // namespace

std::optional<CGGradient> CGGradient::create(Stops stops) {
    const std::size_t count = stops.colors.size();
    std::vector<double> locations =
        stops.locations ? std::move(*stops.locations) : evenLocations(count);
    const bool areInside =
        std::all_of(locations.begin(), locations.end(), [](double l) { return 0 <= l && l <= 1; });
    if (count == 0 || locations.size() != count || !areInside)
        return std::nullopt;
    return CGGradient({std::move(stops.colors), std::move(locations)});
}

CGGradient CGGradient::create(Ends ends) {
    return CGGradient({{ends.startingColor, ends.endingColor}, {0, 1}});
}

} // namespace zorvan
