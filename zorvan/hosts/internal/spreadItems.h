#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zorvan::internal {

/// What stands in a bar: so wide, or as wide as it can be.
struct BarLength {
    double width = 0;
    bool isFlexible = false;
    /// Where it has to begin when there is room; below 0 anywhere.
    double wantedLeft = -1;
};

/// Where each begins and how wide it is, in a bar of that width.
struct BarPlace {
    double left = 0;
    double width = 0;
};

/// One after the other with a gap between them, inside margins. Flexible ones share what is left.
inline std::vector<BarPlace> spreadItems(const std::vector<BarLength>& items, double width,
                                         double margin, double gap) {
    std::vector<BarPlace> places(items.size());
    // From one wanted place to the next, so that what stands before one fills the room up to it.
    std::size_t first = 0;
    double left = items.empty() ? margin : std::max(margin, items.front().wantedLeft);
    while (first < items.size()) {
        std::size_t end = first + 1;
        while (end < items.size() && items[end].wantedLeft < 0)
            ++end;
        const bool isLast = end == items.size();
        const double right = isLast ? width - margin : items[end].wantedLeft - gap;
        double fixed = gap * static_cast<double>(end - first - 1);
        double flexibleCount = 0;
        for (std::size_t i = first; i < end; ++i) {
            fixed += items[i].isFlexible ? 0 : items[i].width;
            flexibleCount += items[i].isFlexible ? 1 : 0;
        }
        const double share =
            flexibleCount > 0 ? std::max(right - left - fixed, 0.0) / flexibleCount : 0;
        for (std::size_t i = first; i < end; ++i) {
            places[i] = {left, items[i].isFlexible ? share : items[i].width};
            left += places[i].width + gap;
        }
        if (!isLast)
            left = std::max(left, items[end].wantedLeft);
        first = end;
    }
    return places;
}

} // namespace zorvan::internal
