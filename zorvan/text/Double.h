#pragma once

#include <string>

namespace zorvan {

/// `x` as a percentage for people, in the current locale: 0.25 gives "25%" in English. When the
/// formatter gives nothing, `x` × 100 cut to an integer and " %" (for NaN "0 %"; a value outside
/// the 64-bit range gives the nearest end of it).
[[nodiscard]] std::string formatPercent(double x);

} // namespace zorvan
