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

} // namespace zorvan::coreservices
