#pragma once

#include <zorvan/colour/CGColor.h>
#include <zorvan/colour/ColorStops.h>
#include <zorvan/platform/foundation/Required.h>

#include <optional>
#include <utility>
#include <vector>

namespace zorvan {

/// A gradient as the drawing services take it: at least one colour, each at a location from 0 to 1.
class CGGradient {
public:
    /// Colours and, if they are not to be evenly spaced, where they stand.
    struct Stops {
        std::vector<CGColor> colors;                       ///< In the order of the stops.
        std::optional<std::vector<double>> locations = {}; ///< One for each colour, from 0 to 1.
    };
    /// Two colours.
    struct Ends {
        Required<CGColor> startingColor; ///< At 0.
        Required<CGColor> endingColor;   ///< At 1.
    };
    /// Without locations the colours are evenly spaced from 0 to 1, and a single one stands at 0.
    /// Absent without a colour, when there are more or fewer locations than colours, and when a
    /// location lies outside 0 to 1.
    [[nodiscard]] static std::optional<CGGradient> create(Stops stops);
    /// From 0 to 1.
    [[nodiscard]] static CGGradient create(Ends ends);

    /// One for each stop, in the order they were given.
    /// @{
    [[nodiscard]] const std::vector<CGColor>& colors() const& noexcept { return stops_.colors; }
    [[nodiscard]] std::vector<CGColor> colors() && noexcept { return std::move(stops_.colors); }
    [[nodiscard]] const std::vector<double>& locations() const& noexcept {
        return stops_.locations;
    }
    [[nodiscard]] std::vector<double> locations() && noexcept {
        return std::move(stops_.locations);
    }
    /// @}
    /// Both at once.
    /// @{
    [[nodiscard]] const ColorStops& colorStops() const& noexcept { return stops_; }
    [[nodiscard]] ColorStops colorStops() && noexcept { return std::move(stops_); }
    /// @}

    friend bool operator==(const CGGradient&, const CGGradient&) = default;

private:
    explicit CGGradient(ColorStops stops) noexcept : stops_(std::move(stops)) {}

    ColorStops stops_;
};

} // namespace zorvan
