#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zorvan {

/// How many elements of an SVG stand within one another at the most while it is drawn, where each
/// reference counts as what it refers to. librsvg takes stack for each of them, and bounds them by
/// nothing before 2.60.
///
/// Absent when that cannot be told: for what is not well-formed, and when some of the drawing is in
/// no element. That is so where entities hold elements or are made of others, where documents are
/// included, and where one is written into an address (`data:`) other than an image's.
std::optional<std::int64_t> svgReach(std::span<const std::byte> document);

} // namespace zorvan
