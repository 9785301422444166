#pragma once

#include <compare>
#include <cstdint>
#include <functional>

namespace zorvan {

/// The place of an item in a view of several sections.
struct IndexPath {
    /// Counted from 0.
    /// @{
    std::int64_t item = 0;
    std::int64_t section = 0;
    /// @}

    /// By section, then by item.
    friend constexpr std::strong_ordering operator<=>(const IndexPath& a,
                                                      const IndexPath& b) noexcept {
        const auto sections = a.section <=> b.section;
        return sections != 0 ? sections : a.item <=> b.item;
    }
    friend constexpr bool operator==(const IndexPath&, const IndexPath&) noexcept = default;
};

} // namespace zorvan

template <>
struct std::hash<zorvan::IndexPath> {
    std::size_t operator()(const zorvan::IndexPath& path) const noexcept {
        // Sections are few and items many: spread the section over the high bits.
        return std::hash<std::int64_t>{}(path.item) ^
               (std::hash<std::int64_t>{}(path.section) * 0x9E3779B97F4A7C15u);
    }
};
