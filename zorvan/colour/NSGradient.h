#pragma once

#include <zorvan/colour/CGGradient.h>
#include <zorvan/colour/ColorStops.h>
#include <zorvan/colour/NSColor.h>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace zorvan {

/// A gradient as interfaces hold it: at least one colour, each at a location from 0 to 1.
class NSGradient {
public:
    /// Colours and, if they are not to be evenly spaced, where they stand.
    struct Stops {
        std::vector<NSColor> colors;                       ///< In the order of the stops.
        std::optional<std::vector<double>> locations = {}; ///< One for each colour, from 0 to 1.
    };
    /// A colour of the gradient and where it stands.
    struct Stop {
        NSColor color;   ///< As it was given.
        double location; ///< From 0 to 1.

        friend constexpr bool operator==(const Stop&, const Stop&) = default;
    };

    /// Without locations the colours are evenly spaced from 0 to 1, and a single one stands at 0.
    /// Absent without a colour, when there are more or fewer locations than colours, and when a
    /// location lies outside 0 to 1.
    [[nodiscard]] static std::optional<NSGradient> make(Stops stops);

    /// At least 1.
    [[nodiscard]] std::int64_t numberOfColorStops() const noexcept {
        return static_cast<std::int64_t>(colorStops().colors.size());
    }
    /// Stops the program when there is no such stop.
    [[nodiscard]] Stop colorStop(std::int64_t index) const noexcept;
    /// All of them, in order.
    /// @{
    [[nodiscard]] const ColorStops& colorStops() const& noexcept { return stops_.colorStops(); }
    [[nodiscard]] ColorStops colorStops() && noexcept { return std::move(stops_).colorStops(); }
    /// @}
    /// The same stops for the drawing services; every gradient has one.
    [[nodiscard]] std::optional<CGGradient> cgGradient() const;

    friend bool operator==(const NSGradient&, const NSGradient&) = default;

private:
    explicit NSGradient(CGGradient stops) noexcept : stops_(std::move(stops)) {}

    CGGradient stops_;
};

} // namespace zorvan
