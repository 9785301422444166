#pragma once

#include <cstddef>
#include <string_view>

namespace zorvan::internal {

/// How many bytes the first character of the text takes, which must not be empty; 0 when they are
/// not well-formed UTF-8: overlong forms, surrogates and what lies past U+10FFFF are not.
std::size_t utf8SequenceLength(std::string_view text) noexcept;

/// Whether the text is well-formed UTF-8 throughout.
bool isUTF8(std::string_view text) noexcept;

} // namespace zorvan::internal
