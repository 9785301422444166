#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvan::internal {

/// The integer that all of a text is: an optional sign, then ASCII digits alone. Absent when it
/// does not fit.
inline std::optional<std::int64_t> decimalInteger(std::string_view text) noexcept {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

} // namespace zorvan::internal
