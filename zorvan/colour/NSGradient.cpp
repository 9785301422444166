#include <zorvan/colour/NSGradient.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <cstddef>
#include <string>
#include <utility>

namespace zorvan {

std::optional<NSGradient> NSGradient::make(Stops stops) {
    CGGradient::Stops drawn{{}, std::move(stops.locations)};
    for (const NSColor& color : stops.colors)
        drawn.colors.push_back(color.cgColor());
    auto gradient = CGGradient::create(std::move(drawn));
    return gradient ? std::optional(NSGradient(std::move(*gradient))) : std::nullopt;
}

std::optional<CGGradient> NSGradient::cgGradient() const { return stops_; }

NSGradient::Stop NSGradient::colorStop(std::int64_t index) const noexcept {
    if (index < 0 || index >= numberOfColorStops())
        fatalError("A gradient of " + std::to_string(numberOfColorStops()) +
                   " has no colour stop at " + std::to_string(index) + ".");
    const auto i = static_cast<std::size_t>(index);
    return {NSColor(colorStops().colors[i]), colorStops().locations[i]};
}

} // namespace zorvan
