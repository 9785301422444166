#pragma once

#include <zorvan/platform/textservices/Locale.h>

#include <string_view>

namespace zorvan {

/// How a first value stands to a second.
enum class ComparisonResult { orderedAscending = -1, orderedSame = 0, orderedDescending = 1 };

/// Compares names as people read them: by the alphabet of the locale, ignoring case, accents and
/// width, and with runs of digits as numbers, so that "file2" comes before "File10". Ill-formed
/// bytes are read as U+FFFD. Allocates nothing once the thread has compared in that locale, unless
/// a name is unusually long.
[[nodiscard]] ComparisonResult compareNames(std::string_view a, std::string_view b);
[[nodiscard]] ComparisonResult compareNames(std::string_view a, std::string_view b,
                                            const Locale& locale);

} // namespace zorvan
