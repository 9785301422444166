#pragma once

#include <zorvan/platform/foundation/internal/ascii.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace zorvan::coreservices {

using internal::lowered;

inline std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) { return lowered(c); });
    return result;
}

constexpr bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowered(x) == lowered(y); });
}

/// Calls `visit` with each part of `text` between `separator`s, empty ones left out.
template <class Visit>
void forEachPart(std::string_view text, char separator, Visit visit) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0)
            visit(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

} // namespace zorvan::coreservices
