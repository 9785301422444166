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
    struct Stops {
        std::vector<CGColor> colors;
        std::optional<std::vector<double>> locations = {};
    };
    struct Ends {
        Required<CGColor> startingColor;
        Required<CGColor> endingColor;
    };
    /// Without locations the colours are evenly spaced from 0 to 1, and a single one stands at 0.
    /// Absent without a colour, when there are more or fewer locations than colours, and when a
    /// location lies outside 0 to 1.
    [[nodiscard]] static std::optional<CGGradient> create(Stops stops);
    /// From 0 to 1.
    [[nodiscard]] static CGGradient create(Ends ends);

    [[nodiscard]] const std::vector<CGColor>& colors() const& noexcept { return stops_.colors; }
    [[nodiscard]] std::vector<CGColor> colors() && noexcept { return std::move(stops_.colors); }
    [[nodiscard]] const std::vector<double>& locations() const& noexcept {
        return stops_.locations;
    }
    [[nodiscard]] std::vector<double> locations() && noexcept {
        return std::move(stops_.locations);
    }
    [[nodiscard]] const ColorStops& colorStops() const& noexcept { return stops_; }
    [[nodiscard]] ColorStops colorStops() && noexcept { return std::move(stops_); }

    friend bool operator==(const CGGradient&, const CGGradient&) = default;

private:
    explicit CGGradient(ColorStops stops) noexcept : stops_(std::move(stops)) {}

    ColorStops stops_;
};

} // namespace zorvan
