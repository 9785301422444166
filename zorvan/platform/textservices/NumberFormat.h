#pragma once

#include <optional>
#include <string>

namespace zorvan {

/// `value` as a percentage for people, in the current locale: 0.25 gives "25%" in English. Digits,
/// grouping and rounding are the locale's. Absent when the formatter cannot be had or gives
/// nothing.
[[nodiscard]] std::optional<std::string> percentText(double value);

} // namespace zorvan
