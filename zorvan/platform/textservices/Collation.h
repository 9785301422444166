#pragma once

#include <zorvan/platform/textservices/Locale.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace zorvan {

/// How a first value stands to a second.
enum class ComparisonResult { orderedAscending = -1, orderedSame = 0, orderedDescending = 1 };

/// Compares names as people read them: by the alphabet of the locale, ignoring case, accents and
/// width, and with runs of digits as numbers, so that "file2" comes before "File10". Ill-formed
/// bytes are read as U+FFFD. Allocates nothing once the thread has compared in that locale, unless
/// a name is unusually long, or the names differ in a number with digits beyond ASCII.
/// @{
[[nodiscard]] ComparisonResult compareNames(std::string_view a, std::string_view b);
[[nodiscard]] ComparisonResult compareNames(std::string_view a, std::string_view b,
                                            const Locale& locale);
/// @}

/// The positions of the names in the order of `compareNames`; names that compare the same keep
/// their order. Far cheaper than a sort that compares, and takes a small multiple of the names'
/// bytes while it runs.
/// @{
[[nodiscard]] std::vector<std::size_t> orderOfNames(std::span<const std::string_view> names);
[[nodiscard]] std::vector<std::size_t> orderOfNames(std::span<const std::string_view> names,
                                                    const Locale& locale);
/// @}

} // namespace zorvan
