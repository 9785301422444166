#pragma once

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/forEachPart.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace zorvan::coreservices {

using internal::forEachPart;
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

} // namespace zorvan::coreservices
