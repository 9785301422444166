#pragma once

#include <string>
#include <string_view>

namespace zorvan::internal {

/// The longest common subsequence of the characters of `a` and `b`, spelt as in `a`.
std::string commonSubsequence(std::string_view a, std::string_view b);

} // namespace zorvan::internal
