#pragma once

#include <string_view>

namespace zorvan::internal {

/// Whether the text is well-formed UTF-8: no overlong forms, no surrogates, nothing past U+10FFFF.
bool isUTF8(std::string_view text) noexcept;

} // namespace zorvan::internal
